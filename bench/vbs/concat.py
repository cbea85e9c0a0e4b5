# Eight rounds of a million appends each, the text starting afresh every round.
def main():
    n = 0
    for round in range(8):
        s = ""
        for i in range(1000000):
            s = s + "0123456789"
        n += len(s)
    print(n)
main()
