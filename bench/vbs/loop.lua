local function main()
  local s = 0
  for i = 1, 50000000 do s = s + i * 2 - 1 end
  print(string.format("%.0f", s))
end
main()
