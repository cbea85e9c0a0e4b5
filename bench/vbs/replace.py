# 100,000 str.replace calls on a 1 KB text.
def main():
    text = ""
    while len(text) < 1024:
        text += "The quick brown fox jumps over the lazy dog. "
    for i in range(100000):
        r = text.replace("fox", "cat")
    print(len(r))
main()
