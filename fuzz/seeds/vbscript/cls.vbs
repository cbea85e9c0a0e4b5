Class C
 Public Default Property Get V(i) : V = i : End Property
End Class
Set c = New C : z = c(3)
