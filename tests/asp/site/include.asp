<!--#include file="INC/Header.inc"-->body<!-- #include virtual="/inc/footer.inc" -->
<% Response.Write Shout("x") %>
