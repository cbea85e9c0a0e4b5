def main():
    s = ""
    for i in range(100000):
        s = s + "0123456789"
    print(len(s))
main()
