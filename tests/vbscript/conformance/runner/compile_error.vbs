' A compile error, reported with its line and column.
x = (1 +
