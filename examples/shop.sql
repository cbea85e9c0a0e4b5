-- The demo's sample shop: a small online store in SQLite, built with
--   sqlite3 shop.db < shop.sql
-- Twelve related tables with single and two-column keys, unique indexes, an auto-increment
-- key, dates, money, Booleans, long texts and an image column, a view, and some rows.
PRAGMA foreign_keys = ON;
BEGIN;

CREATE TABLE categories (
  category_id INTEGER PRIMARY KEY,
  name VARCHAR(50) NOT NULL,
  description TEXT,
  picture BLOB
);
CREATE UNIQUE INDEX ux_categories_name ON categories (name);

CREATE TABLE suppliers (
  supplier_id INTEGER PRIMARY KEY AUTOINCREMENT,
  company_name VARCHAR(80) NOT NULL,
  contact_name VARCHAR(60),
  country VARCHAR(40),
  phone VARCHAR(24),
  home_page TEXT
);

CREATE TABLE products (
  product_id INTEGER PRIMARY KEY AUTOINCREMENT,
  name VARCHAR(80) NOT NULL,
  supplier_id INTEGER REFERENCES suppliers (supplier_id),
  category_id INTEGER REFERENCES categories (category_id),
  quantity_per_unit VARCHAR(40),
  unit_price MONEY NOT NULL DEFAULT 0,
  units_in_stock SMALLINT DEFAULT 0,
  discontinued BOOLEAN NOT NULL DEFAULT 0,
  added_on DATE,
  details TEXT
);
CREATE INDEX ix_products_category ON products (category_id);
CREATE UNIQUE INDEX ux_products_name ON products (name);

CREATE TABLE product_images (
  product_id INTEGER NOT NULL REFERENCES products (product_id),
  image_no SMALLINT NOT NULL,
  caption VARCHAR(100),
  image BLOB,
  PRIMARY KEY (product_id, image_no)
);

CREATE TABLE customers (
  customer_id INTEGER PRIMARY KEY AUTOINCREMENT,
  email VARCHAR(120) NOT NULL,
  first_name VARCHAR(40) NOT NULL,
  last_name VARCHAR(40) NOT NULL,
  birth_date DATE,
  newsletter BOOLEAN NOT NULL DEFAULT 1,
  created_at DATETIME NOT NULL,
  notes TEXT
);
CREATE UNIQUE INDEX ux_customers_email ON customers (email);

CREATE TABLE addresses (
  address_id INTEGER PRIMARY KEY AUTOINCREMENT,
  customer_id INTEGER NOT NULL REFERENCES customers (customer_id),
  kind CHAR(1) NOT NULL DEFAULT 'S',
  street VARCHAR(100) NOT NULL,
  city VARCHAR(60) NOT NULL,
  postal_code VARCHAR(12),
  country VARCHAR(40) NOT NULL
);

CREATE TABLE employees (
  employee_id INTEGER PRIMARY KEY AUTOINCREMENT,
  first_name VARCHAR(40) NOT NULL,
  last_name VARCHAR(40) NOT NULL,
  title VARCHAR(60),
  hired_on DATE,
  reports_to INTEGER REFERENCES employees (employee_id),
  salary MONEY,
  photo BLOB
);

CREATE TABLE orders (
  order_id INTEGER PRIMARY KEY AUTOINCREMENT,
  customer_id INTEGER NOT NULL REFERENCES customers (customer_id),
  employee_id INTEGER REFERENCES employees (employee_id),
  ordered_at DATETIME NOT NULL,
  required_on DATE,
  shipping_address_id INTEGER REFERENCES addresses (address_id),
  freight MONEY DEFAULT 0,
  paid BOOLEAN NOT NULL DEFAULT 0,
  comments TEXT
);
CREATE INDEX ix_orders_customer ON orders (customer_id);

CREATE TABLE order_items (
  order_id INTEGER NOT NULL REFERENCES orders (order_id),
  line_no SMALLINT NOT NULL,
  product_id INTEGER NOT NULL REFERENCES products (product_id),
  quantity SMALLINT NOT NULL DEFAULT 1,
  unit_price MONEY NOT NULL,
  discount REAL NOT NULL DEFAULT 0,
  PRIMARY KEY (order_id, line_no)
);
CREATE UNIQUE INDEX ux_order_items_product ON order_items (order_id, product_id);

CREATE TABLE payments (
  payment_id INTEGER PRIMARY KEY AUTOINCREMENT,
  order_id INTEGER NOT NULL REFERENCES orders (order_id),
  paid_at DATETIME NOT NULL,
  amount MONEY NOT NULL,
  method VARCHAR(20) NOT NULL,
  reference VARCHAR(64)
);
CREATE UNIQUE INDEX ux_payments_reference ON payments (reference);

CREATE TABLE shipments (
  shipment_id INTEGER PRIMARY KEY AUTOINCREMENT,
  order_id INTEGER NOT NULL REFERENCES orders (order_id),
  shipped_on DATE,
  delivered_on DATE,
  carrier VARCHAR(40),
  tracking_no VARCHAR(40),
  signed BOOLEAN DEFAULT 0
);

CREATE TABLE reviews (
  review_id INTEGER PRIMARY KEY AUTOINCREMENT,
  product_id INTEGER NOT NULL REFERENCES products (product_id),
  customer_id INTEGER NOT NULL REFERENCES customers (customer_id),
  rating TINYINT NOT NULL CHECK (rating BETWEEN 1 AND 5),
  title VARCHAR(100),
  body TEXT,
  written_on DATE NOT NULL,
  approved BOOLEAN NOT NULL DEFAULT 0
);

CREATE VIEW order_totals AS
  SELECT o.order_id, c.last_name || ', ' || c.first_name AS customer, o.ordered_at,
         SUM(i.quantity * i.unit_price * (1 - i.discount)) AS total
  FROM orders o
  JOIN customers c ON c.customer_id = o.customer_id
  JOIN order_items i ON i.order_id = o.order_id
  GROUP BY o.order_id, c.last_name, c.first_name, o.ordered_at;

INSERT INTO categories (category_id, name, description, picture) VALUES
  (1, 'Beverages', 'Soft drinks, coffees, teas, beers, and ales', X'89504E470D0A1A0A'),
  (2, 'Condiments', 'Sweet and savory sauces, relishes, spreads, and seasonings', NULL),
  (3, 'Confections', 'Desserts, candies, and sweet breads', NULL);

INSERT INTO suppliers (company_name, contact_name, country, phone, home_page) VALUES
  ('Exotic Liquids', 'Charlotte Cooper', 'UK', '(171) 555-2222', NULL),
  ('Tokyo Traders', 'Yoshi Nagase', 'Japan', '(03) 3555-5011', 'https://tokyo-traders.example'),
  ('Pavlova, Ltd.', 'Ian Devling', 'Australia', '(03) 444-2343', NULL);

INSERT INTO products (name, supplier_id, category_id, quantity_per_unit, unit_price,
                      units_in_stock, discontinued, added_on, details) VALUES
  ('Chai', 1, 1, '10 boxes x 20 bags', 18.00, 39, 0, '2023-01-15',
   'A black tea from the Assam hills, spiced with cardamom, ginger and cinnamon.'),
  ('Chang', 1, 1, '24 - 12 oz bottles', 19.00, 17, 0, '2023-01-15', NULL),
  ('Aniseed Syrup', 1, 2, '12 - 550 ml bottles', 10.00, 13, 0, '2023-02-01', NULL),
  ('Mishi Kobe Niku', 2, 2, '18 - 500 g pkgs.', 97.00, 29, 1, '2023-03-10',
   'Discontinued: the supplier no longer ships it.'),
  ('Pavlova', 3, 3, '32 - 500 g boxes', 17.45, 29, 0, '2023-04-22', NULL);

INSERT INTO product_images (product_id, image_no, caption, image) VALUES
  (1, 1, 'Box front', X'FFD8FFE000104A464946'),
  (1, 2, 'Box back', X'FFD8FFE000104A464946'),
  (5, 1, 'Served', NULL);

INSERT INTO customers (email, first_name, last_name, birth_date, newsletter, created_at, notes) VALUES
  ('maria.anders@example.com', 'Maria', 'Anders', '1971-03-08', 1, '2023-05-01 09:15:00', NULL),
  ('ana.trujillo@example.com', 'Ana', 'Trujillo', NULL, 0, '2023-05-03 17:42:10',
   'Prefers deliveries after 6 pm.'),
  ('thomas.hardy@example.com', 'Thomas', 'Hardy', '1980-11-23', 1, '2023-06-12 11:00:00', NULL);

INSERT INTO addresses (customer_id, kind, street, city, postal_code, country) VALUES
  (1, 'S', 'Obere Str. 57', 'Berlin', '12209', 'Germany'),
  (2, 'S', 'Avda. de la Constitución 2222', 'México D.F.', '05021', 'Mexico'),
  (3, 'B', '120 Hanover Sq.', 'London', 'WA1 1DP', 'UK');

INSERT INTO employees (first_name, last_name, title, hired_on, reports_to, salary, photo) VALUES
  ('Andrew', 'Fuller', 'Vice President, Sales', '2019-08-14', NULL, 9000.00, NULL),
  ('Nancy', 'Davolio', 'Sales Representative', '2020-05-01', 1, 4200.50, X'FFD8FFE0'),
  ('Janet', 'Leverling', 'Sales Representative', '2021-04-01', 1, 4100.00, NULL);

INSERT INTO orders (customer_id, employee_id, ordered_at, required_on, shipping_address_id,
                    freight, paid, comments) VALUES
  (1, 2, '2024-01-10 10:30:00', '2024-01-24', 1, 32.38, 1, NULL),
  (2, 3, '2024-02-02 14:05:45', '2024-02-16', 2, 11.61, 0, 'Gift wrap, please.'),
  (3, 2, '2024-02-29 08:00:00', NULL, 3, 0, 1, NULL);

INSERT INTO order_items (order_id, line_no, product_id, quantity, unit_price, discount) VALUES
  (1, 1, 1, 12, 18.00, 0),
  (1, 2, 3, 10, 10.00, 0.05),
  (2, 1, 5, 5, 17.45, 0),
  (3, 1, 2, 20, 19.00, 0.1),
  (3, 2, 1, 2, 18.00, 0);

INSERT INTO payments (order_id, paid_at, amount, method, reference) VALUES
  (1, '2024-01-10 10:35:12', 343.38, 'card', 'PAY-0001'),
  (3, '2024-02-29 08:02:00', 378.00, 'transfer', 'PAY-0002');

INSERT INTO shipments (order_id, shipped_on, delivered_on, carrier, tracking_no, signed) VALUES
  (1, '2024-01-12', '2024-01-15', 'Speedy Express', 'SE-4471', 1),
  (3, '2024-03-01', NULL, 'United Package', 'UP-9910', 0);

INSERT INTO reviews (product_id, customer_id, rating, title, body, written_on, approved) VALUES
  (1, 1, 5, 'Lovely chai', 'Warm, spicy and not too sweet. I order it every month.', '2024-01-20', 1),
  (5, 2, 4, NULL, 'Good, but the box arrived slightly dented.', '2024-02-20', 0);

COMMIT;
