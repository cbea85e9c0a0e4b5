-- Lua strings are immutable: appending copies, so this is the idiomatic buffer form.
-- Eight rounds of a million appends each, the text starting afresh every round.
local function main()
  local n = 0
  for round = 1, 8 do
    local parts = {}
    for i = 1, 1000000 do parts[#parts + 1] = "0123456789" end
    n = n + #table.concat(parts)
  end
  print(n)
end
main()
