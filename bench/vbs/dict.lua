-- 300,000 table insertions, then 300,000 look-ups.
local d = {}
for i = 0, 299999 do d["key" .. i] = i end
local total = 0
for i = 0, 299999 do total = total + d["key" .. i] end
print(total)
