-- Lua strings are immutable: appending copies, so this is the idiomatic buffer form.
local function main()
  local parts = {}
  for i = 1, 1000000 do parts[#parts + 1] = "0123456789" end
  local s = table.concat(parts)
  print(#s)
end
main()
