-- 100,000 plain-text gsub calls on a 1 KB text.
local text = ""
while #text < 1024 do text = text .. "The quick brown fox jumps over the lazy dog. " end
local r
for i = 1, 100000 do r = text:gsub("fox", "cat") end
print(#r)
