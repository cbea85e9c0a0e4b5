<script language="VBScript" runat="server">
Function Twice(n)
  Twice = n * 2
End Function
</script>
<%= Twice(21) %>