' Reads 100,000 rows x 5 columns forward-only through rs.MoveNext and rs("col").
Dim cn, rs, total, count, id, name, price, qty, added
Set cn = CreateObject("ADODB.Connection")
cn.Open "Provider=SQLite;Data Source=" & WScript.Arguments(0)
Set rs = cn.Execute("SELECT id, name, price, qty, added FROM items")
total = 0
count = 0
Do Until rs.EOF
  id = rs("id")
  name = rs("name")
  price = rs("price")
  qty = rs("qty")
  added = rs("added")
  total = total + price + qty
  count = count + 1
  rs.MoveNext
Loop
WScript.Echo count, total
