-- The part of the test schema that every server accepts as written: keys of one and two
-- columns, unique indexes of one and two columns, a plain index, decimals, dates and rows.
-- Server-specific types (auto-increment, Booleans, long texts, blobs, names with blanks)
-- follow in test_schema_pg.sql and test_schema_maria.sql.
CREATE TABLE categories (
  category_id INTEGER NOT NULL PRIMARY KEY,
  name VARCHAR(50) NOT NULL,
  description VARCHAR(400)
);
CREATE UNIQUE INDEX ux_categories_name ON categories (name);

CREATE TABLE order_lines (
  order_id INTEGER NOT NULL,
  line_no INTEGER NOT NULL,
  product_id INTEGER NOT NULL,
  quantity SMALLINT,
  unit_price DECIMAL(19, 4),
  shipped DATE,
  PRIMARY KEY (order_id, line_no)
);
CREATE INDEX ix_order_lines_product ON order_lines (product_id);
CREATE UNIQUE INDEX ux_order_lines_pair ON order_lines (order_id, product_id);

INSERT INTO categories (category_id, name, description) VALUES (1, 'Beverages', 'Soft drinks, coffees, teas');
INSERT INTO categories (category_id, name, description) VALUES (2, 'Condiments', NULL);
INSERT INTO order_lines VALUES (10248, 1, 11, 12, 14.0000, DATE '1996-07-16');
INSERT INTO order_lines VALUES (10248, 2, 42, 10, 9.8000, NULL);
