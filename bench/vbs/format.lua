-- 400,000 numbers formatted with two decimals and grouped by threes.
local s
for i = 1, 400000 do
  local t = string.format("%.2f", i * 1.2345)
  local whole, frac = t:match("^(%d+)(%.%d+)$")
  s = whole:reverse():gsub("(%d%d%d)", "%1,"):reverse():gsub("^,", "") .. frac
end
print(s)
