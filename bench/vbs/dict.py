# 100,000 dict insertions, then 100,000 look-ups.
def main():
    d = {}
    for i in range(100000):
        d["key" + str(i)] = i
    total = 0
    for i in range(100000):
        total += d["key" + str(i)]
    print(total)
main()
