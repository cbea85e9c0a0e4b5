def main():
    s = ""
    for i in range(1000000):
        s = s + "0123456789"
    print(len(s))
main()
