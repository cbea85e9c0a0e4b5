# 400,000 numbers formatted with grouping and two decimals.
def main():
    for i in range(1, 400001):
        s = "{:,.2f}".format(i * 1.2345)
    print(s)
main()
