def main():
    s = 0
    for i in range(1, 50000001):
        s = s + i * 2 - 1
    print(s)
main()
