-- MariaDB's spelling of the server-specific part of the test schema.
CREATE TABLE products (
  product_id INTEGER NOT NULL AUTO_INCREMENT PRIMARY KEY,
  name VARCHAR(80) NOT NULL,
  price DECIMAL(19, 4),
  list_price DECIMAL(19, 4),
  discontinued BOOLEAN NOT NULL DEFAULT FALSE,
  added DATE,
  updated_at DATETIME,
  notes LONGTEXT,
  picture LONGBLOB,
  category_id INTEGER REFERENCES categories (category_id)
);
CREATE TABLE `order notes` (`note id` INTEGER NOT NULL PRIMARY KEY, `note text` TEXT);
CREATE VIEW product_list AS SELECT product_id, name, price FROM products WHERE NOT discontinued;

INSERT INTO products (name, price, list_price, discontinued, added, updated_at, notes, picture, category_id)
VALUES ('Chai', 18.0000, 18.00, FALSE, '1996-07-04', '1996-07-04 13:45:30', 'Ten boxes x 20 bags', X'89504E47', 1),
       ('Aniseed Syrup', 10.0000, 10.00, TRUE, NULL, NULL, NULL, NULL, 2);
INSERT INTO `order notes` VALUES (1, 'Leave at the door');
