class Counter:
    def __init__(self):
        self._v = 3
    @property
    def Value(self):
        return self._v
def main():
    c = Counter()
    s = 0
    for i in range(1, 9000001):
        s = s + c.Value
    print(s)
main()
