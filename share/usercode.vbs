'Please enter your script here
'
' This is the user's code file of generation (the setting USERCODE names it). Functions here
' run while pages are generated. A function named USER_ and the name of a template tag
' receives that tag's value and returns what the page gets instead, for example:
'
'   Function USER_qvFooter(text)
'     USER_qvFooter = "&copy; My Company &middot; " & text
'   End Function
'
' The default template package's README lists the tags it offers for this.
