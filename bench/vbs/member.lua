-- The counterpart of a host object: a table whose field is read through its metatable.
local Counter = {}
Counter.__index = function(t, k) if k == "Value" then return rawget(t, "_v") end end
local function main()
  local c = setmetatable({_v = 3}, Counter)
  local s = 0
  for i = 1, 9000000 do s = s + c.Value end
  print(s)
end
main()
