# 300,000 dict insertions, then 300,000 look-ups.
def main():
    d = {}
    for i in range(300000):
        d["key" + str(i)] = i
    total = 0
    for i in range(300000):
        total += d["key" + str(i)]
    print(total)
main()
