line one
<!--#include file="inc/raise.inc"-->
