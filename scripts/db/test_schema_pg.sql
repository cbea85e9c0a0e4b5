-- PostgreSQL's spelling of the server-specific part of the test schema.
CREATE TABLE products (
  product_id SERIAL PRIMARY KEY,
  name VARCHAR(80) NOT NULL,
  price NUMERIC(19, 4),
  list_price MONEY,
  discontinued BOOLEAN NOT NULL DEFAULT FALSE,
  added DATE,
  updated_at TIMESTAMP,
  notes TEXT,
  picture BYTEA,
  category_id INTEGER REFERENCES categories (category_id)
);
CREATE TABLE "order notes" ("note id" INTEGER NOT NULL PRIMARY KEY, "note text" TEXT);
CREATE VIEW product_list AS SELECT product_id, name, price FROM products WHERE NOT discontinued;

INSERT INTO products (name, price, list_price, discontinued, added, updated_at, notes, picture, category_id)
VALUES ('Chai', 18.0000, 18.00, FALSE, '1996-07-04', '1996-07-04 13:45:30', 'Ten boxes x 20 bags', '\x89504e47', 1),
       ('Aniseed Syrup', 10.0000, 10.00, TRUE, NULL, NULL, NULL, NULL, 2);
INSERT INTO "order notes" VALUES (1, 'Leave at the door');
