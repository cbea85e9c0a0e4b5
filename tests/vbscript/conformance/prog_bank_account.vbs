' A bank-account class: Property Let validation, custom errors raised from methods and
' caught by the caller, Currency balances and the lifetime messages of the objects.
Dim events
events = ""

Class Account
  Private mBalance, mOwner, mHistory

  Private Sub Class_Initialize()
    mBalance = CCur(0)
    mHistory = ""
    events = events & "open;"
  End Sub

  Private Sub Class_Terminate()
    events = events & "close " & mOwner & ";"
  End Sub

  Public Property Let Owner(v)
    If Len(Trim(v)) = 0 Then Err.Raise vbObjectError + 1, "Account", "Owner required"
    mOwner = Trim(v)
  End Property

  Public Property Get Owner()
    Owner = mOwner
  End Property

  Public Property Get Balance()
    Balance = mBalance
  End Property

  Public Property Get History()
    History = mHistory
  End Property

  Public Sub Deposit(amount)
    If Not IsNumeric(amount) Then Err.Raise 13
    If amount <= 0 Then Err.Raise 5
    mBalance = mBalance + CCur(amount)
    mHistory = mHistory & "+" & amount
  End Sub

  Public Function Withdraw(amount)
    If amount > mBalance Then
      Err.Raise vbObjectError + 513, "Account.Withdraw", "Insufficient funds: " & FormatCurrency(mBalance)
    End If
    mBalance = mBalance - CCur(amount)
    mHistory = mHistory & "-" & amount
    Withdraw = mBalance
  End Function
End Class

Dim acct
Set acct = New Account
Check events, "open;", "Class_Initialize runs on New"
acct.Owner = "  Ann "
Check acct.Owner, "Ann", "Property Let stored the trimmed owner"
acct.Deposit 100
acct.Deposit "25.50"
CheckEach Array("acct.Balance", CCur(125.5), "TypeName(acct.Balance)", "Currency", _
  "CStr(acct.Balance)", "125.5")

On Error Resume Next
acct.Withdraw 1000
Check Err.Number, vbObjectError + 513, "custom error number"
Check Hex(Err.Number), "80040201", "custom error number in hex"
Check Err.Source, "Account.Withdraw", "custom error source"
Check Err.Description, "Insufficient funds: $125.50", "custom error description"
Err.Clear
acct.Owner = "   "
Check Err.Number, vbObjectError + 1, "Property Let refuses a blank owner"
Check acct.Owner, "Ann", "the owner is unchanged after the refusal"
Err.Clear
acct.Deposit "ten"
Check Err.Number, CLng(13), "a deposit that is no number"
Err.Clear
On Error GoTo 0

CheckEach Array("acct.Withdraw(20.25)", CCur(105.25), "acct.History", "+100+25.50-20.25")

Dim other
Set other = acct
Set acct = Nothing
Check events, "open;", "a second reference keeps the account alive"
Set other = Nothing
Check events, "open;close Ann;", "the last reference runs Class_Terminate"

' Interest compounding in Currency keeps four decimals at each step.
Dim bal, yr
bal = CCur(1000)
For yr = 1 To 3
  bal = bal + CCur(bal * 0.05)
Next
CheckEach Array("bal", CCur(1157.625), "FormatCurrency(bal, 3)", "$1,157.625", _
  "CStr(CCur(""1.23455"") + CCur(""1.23465""))", "2.4692")
