-- SPDX-License-Identifier: MIT
--
-- The sample database: a company that trades in hardware, from its suppliers to its customers.
-- Every value follows from a number by fixed lists and modular arithmetic, so that each run writes
-- the same rows and a documented query gives the documented answer. Multipliers are prime to the
-- modulus beside them: neighbouring rows differ, and every value of a list is reached.
--
-- Each statement ends with a semicolon at the end of a line.

-- Lists, for the time of this script only.

CREATE TEMP TABLE given_names (pos INTEGER PRIMARY KEY, name TEXT);

INSERT INTO given_names (name) VALUES
    ('Ada'), ('Bruno'), ('Clara'), ('David'), ('Elena'), ('Felix'), ('Grace'), ('Henrik'),
    ('Irene'), ('Jonas'), ('Katja'), ('Liam'), ('Maria'), ('Niels'), ('Olga'), ('Pedro'),
    ('Quentin'), ('Rosa'), ('Stefan'), ('Teresa'), ('Ursula'), ('Victor'), ('Wanda'), ('Xavier'),
    ('Yvonne'), ('Zoltan'), ('Agnes'), ('Boris'), ('Carmen'), ('Dieter'), ('Emma');

CREATE TEMP TABLE family_names (pos INTEGER PRIMARY KEY, name TEXT);

INSERT INTO family_names (name) VALUES
    ('Abbott'), ('Becker'), ('Castillo'), ('Dubois'), ('Eriksen'), ('Ferrari'), ('Gallagher'),
    ('Horvath'), ('Ivanova'), ('Jansen'), ('Keller'), ('Lindqvist'), ('Moreau'), ('Novak'),
    ('O''Brien'), ('Petersen'), ('Quirke'), ('Rossi'), ('Silva'), ('Thompson'), ('Ulrich'),
    ('Vasquez'), ('Weber'), ('Yilmaz'), ('Zeman'), ('Andersson'), ('Bianchi'), ('Costa'),
    ('Dvorak'), ('Evans'), ('Fischer'), ('Garcia'), ('Hansen'), ('Jimenez'), ('Kovacs'),
    ('Lambert'), ('Murphy');

CREATE TEMP TABLE trades (pos INTEGER PRIMARY KEY, name TEXT);

INSERT INTO trades (name) VALUES
    ('Hardware'), ('Joinery'), ('Building Supplies'), ('Ironworks'), ('Boatyard'), ('Plumbing'),
    ('Tools'), ('Roofing'), ('Workshops'), ('Interiors'), ('Metalwork');

CREATE TEMP TABLE streets (pos INTEGER PRIMARY KEY, name TEXT);

INSERT INTO streets (name) VALUES
    ('Harbour Street'), ('Mill Lane'), ('Station Road'), ('Market Square'), ('Bridge Street'),
    ('Church Road'), ('Foundry Lane'), ('Canal Street'), ('Garden Avenue'), ('North Quay'),
    ('Old Town Road'), ('Park Avenue'), ('Timber Yard');

CREATE TEMP TABLE places (
    pos INTEGER PRIMARY KEY, city TEXT, country_code TEXT, dial INTEGER, postcode TEXT);

INSERT INTO places (city, country_code, dial, postcode) VALUES
    ('Berlin', 'DE', 49, '101'), ('London', 'GB', 44, NULL), ('Paris', 'FR', 33, '750'),
    ('Hamburg', 'DE', 49, '200'), ('Lisbon', 'PT', 351, '11'), ('Vienna', 'AT', 43, '10'),
    ('Stockholm', 'SE', 46, '111'), ('Milan', 'IT', 39, '201'), ('Dublin', 'IE', 353, NULL),
    ('Prague', 'CZ', 420, '110'), ('Madrid', 'ES', 34, '280'), ('Oslo', 'NO', 47, '01'),
    ('Amsterdam', 'NL', 31, '10'), ('Copenhagen', 'DK', 45, '10'), ('Munich', 'DE', 49, '803'),
    ('Leeds', 'GB', 44, NULL), ('Lyon', 'FR', 33, '690'), ('Toronto', 'CA', 1, NULL),
    ('Boston', 'US', 1, '021'), ('Zurich', 'CH', 41, '80'), ('Warsaw', 'PL', 48, '00-0'),
    ('Porto', 'PT', 351, '40'), ('Graz', 'AT', 43, '80'), ('Gothenburg', 'SE', 46, '411'),
    ('Rotterdam', 'NL', 31, '30'), ('Turin', 'IT', 39, '101'), ('Seattle', 'US', 1, '981'),
    ('Barcelona', 'ES', 34, '080'), ('Sydney', 'AU', 61, '20');

CREATE TEMP TABLE materials (pos INTEGER PRIMARY KEY, name TEXT, factor REAL);

INSERT INTO materials (name, factor) VALUES
    ('Steel', 1.0), ('Brass', 2.2), ('Copper', 2.6), ('Nylon', 0.6), ('Oak', 1.9), ('Zinc', 1.2),
    ('Aluminium', 1.5), ('Bronze', 2.9), ('Rubber', 0.7), ('Iron', 0.9), ('Pine', 0.8),
    ('Chrome', 2.4);

CREATE TEMP TABLE shapes (
    pos INTEGER PRIMARY KEY, name TEXT, category TEXT, price REAL, grams INTEGER);

INSERT INTO shapes (name, category, price, grams) VALUES
    ('hinge', 'Fittings', 3.40, 120), ('bracket', 'Fittings', 2.75, 210),
    ('handle', 'Fittings', 6.90, 180), ('hook', 'Fittings', 1.95, 60),
    ('washer', 'Fasteners', 0.35, 4), ('bolt', 'Fasteners', 0.80, 25),
    ('rivet', 'Fasteners', 0.25, 3), ('pipe', 'Plumbing', 8.60, 950),
    ('valve', 'Plumbing', 14.20, 430), ('elbow joint', 'Plumbing', 4.15, 160),
    ('mallet', 'Tools', 18.50, 780),
    ('scraper', 'Tools', 9.95, 240), ('clamp', 'Tools', 12.30, 610);

-- The tables.

CREATE TABLE countries (
    country_code CHAR(2) NOT NULL PRIMARY KEY,
    name VARCHAR(40) NOT NULL,
    region VARCHAR(20) NOT NULL,
    currency CHAR(3) NOT NULL,
    eu_member BOOLEAN NOT NULL
);

CREATE TABLE departments (
    department_no INTEGER PRIMARY KEY,
    name VARCHAR(30) NOT NULL UNIQUE,
    city VARCHAR(30) NOT NULL,
    head_no INTEGER REFERENCES employees (employee_no),
    budget DECIMAL(12,2)
);

CREATE TABLE employees (
    employee_no INTEGER PRIMARY KEY,
    first_name VARCHAR(20) NOT NULL,
    last_name VARCHAR(30) NOT NULL,
    job_title VARCHAR(40) NOT NULL,
    department_no INTEGER NOT NULL REFERENCES departments (department_no),
    manager_no INTEGER REFERENCES employees (employee_no),
    hired_on DATE NOT NULL,
    left_on DATE,
    salary DECIMAL(10,2) NOT NULL,
    commission DECIMAL(4,2),
    city VARCHAR(30) NOT NULL,
    country_code CHAR(2) NOT NULL REFERENCES countries (country_code),
    phone VARCHAR(20)
);

CREATE TABLE customers (
    customer_no INTEGER PRIMARY KEY,
    name VARCHAR(60) NOT NULL,
    contact VARCHAR(50),
    street VARCHAR(50) NOT NULL,
    city VARCHAR(30) NOT NULL,
    postcode VARCHAR(10),
    country_code CHAR(2) NOT NULL REFERENCES countries (country_code),
    phone VARCHAR(20),
    sales_rep_no INTEGER REFERENCES employees (employee_no),
    credit_limit DECIMAL(10,2),
    customer_since DATE NOT NULL,
    on_hold BOOLEAN NOT NULL
);

CREATE TABLE shippers (
    shipper_no INTEGER PRIMARY KEY,
    name VARCHAR(30) NOT NULL,
    phone VARCHAR(20),
    rate_per_kg DECIMAL(6,2) NOT NULL
);

CREATE TABLE orders (
    order_no INTEGER PRIMARY KEY,
    customer_no INTEGER NOT NULL REFERENCES customers (customer_no),
    employee_no INTEGER NOT NULL REFERENCES employees (employee_no),
    ordered_on DATE NOT NULL,
    shipped_on DATE,
    shipper_no INTEGER REFERENCES shippers (shipper_no),
    status VARCHAR(10) NOT NULL,
    freight DECIMAL(8,2) NOT NULL,
    total DECIMAL(12,2)
);

CREATE TABLE items (
    order_no INTEGER NOT NULL REFERENCES orders (order_no),
    line_no SMALLINT NOT NULL,
    part_no INTEGER NOT NULL REFERENCES parts (part_no),
    quantity INTEGER NOT NULL,
    unit_price DECIMAL(10,2) NOT NULL,
    discount DECIMAL(4,1),
    PRIMARY KEY (order_no, line_no)
);

CREATE TABLE parts (
    part_no INTEGER PRIMARY KEY,
    description VARCHAR(40) NOT NULL,
    category VARCHAR(20) NOT NULL,
    list_price DECIMAL(10,2) NOT NULL,
    weight_kg FLOAT,
    in_stock INTEGER NOT NULL,
    reorder_level INTEGER NOT NULL,
    introduced_on DATE NOT NULL,
    discontinued BOOLEAN NOT NULL
);

CREATE TABLE suppliers (
    supplier_no INTEGER PRIMARY KEY,
    name VARCHAR(60) NOT NULL,
    city VARCHAR(30) NOT NULL,
    country_code CHAR(2) NOT NULL REFERENCES countries (country_code),
    phone VARCHAR(20),
    rating SMALLINT
);

CREATE TABLE part_suppliers (
    part_no INTEGER NOT NULL REFERENCES parts (part_no),
    supplier_no INTEGER NOT NULL REFERENCES suppliers (supplier_no),
    cost DECIMAL(10,2) NOT NULL,
    lead_days SMALLINT,
    preferred BOOLEAN NOT NULL,
    PRIMARY KEY (part_no, supplier_no)
);

CREATE TABLE payments (
    payment_no INTEGER PRIMARY KEY,
    order_no INTEGER NOT NULL REFERENCES orders (order_no),
    paid_at TIMESTAMP NOT NULL,
    amount DECIMAL(12,2) NOT NULL,
    method VARCHAR(20) NOT NULL,
    reference VARCHAR(20)
);

-- The rows.

INSERT INTO countries VALUES
    ('AT', 'Austria', 'Europe', 'EUR', 1), ('AU', 'Australia', 'Oceania', 'AUD', 0),
    ('BE', 'Belgium', 'Europe', 'EUR', 1), ('CA', 'Canada', 'North America', 'CAD', 0),
    ('CH', 'Switzerland', 'Europe', 'CHF', 0), ('CZ', 'Czechia', 'Europe', 'CZK', 1),
    ('DE', 'Germany', 'Europe', 'EUR', 1), ('DK', 'Denmark', 'Europe', 'DKK', 1),
    ('ES', 'Spain', 'Europe', 'EUR', 1), ('FI', 'Finland', 'Europe', 'EUR', 1),
    ('FR', 'France', 'Europe', 'EUR', 1), ('GB', 'United Kingdom', 'Europe', 'GBP', 0),
    ('IE', 'Ireland', 'Europe', 'EUR', 1), ('IT', 'Italy', 'Europe', 'EUR', 1),
    ('JP', 'Japan', 'Asia', 'JPY', 0), ('NL', 'Netherlands', 'Europe', 'EUR', 1),
    ('NO', 'Norway', 'Europe', 'NOK', 0), ('PL', 'Poland', 'Europe', 'PLN', 1),
    ('PT', 'Portugal', 'Europe', 'EUR', 1), ('SE', 'Sweden', 'Europe', 'SEK', 1),
    ('US', 'United States', 'North America', 'USD', 0);

INSERT INTO departments (department_no, name, city, head_no, budget) VALUES
    (1, 'Management', 'Hamburg', 1, 850000), (2, 'Sales Europe', 'Hamburg', 2, 1200000),
    (3, 'Sales Overseas', 'Boston', 3, 640000), (4, 'Purchasing', 'Milan', 4, 480000),
    (5, 'Warehouse', 'Rotterdam', 5, 910000), (6, 'Shipping', 'Rotterdam', 6, 720000),
    (7, 'Accounts', 'Hamburg', 7, 310000), (8, 'Customer Service', 'Dublin', 8, 365000),
    (9, 'New Markets', 'Lisbon', NULL, NULL);

-- Numbers 1 to 8 head the departments of the same number; every fifth of the others leads those
-- who follow in the same department.
WITH RECURSIVE numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 60),
staff (n, department_no) AS (
    SELECT n, CASE WHEN n <= 8 THEN n WHEN n % 4 < 2 THEN 2 + n % 2 ELSE 4 + n % 5 END
    FROM numbers)
INSERT INTO employees
SELECT s.n, g.name, f.name,
    CASE WHEN s.n = 1 THEN 'Managing Director'
         WHEN s.n <= 8 THEN 'Head of ' || d.name
         WHEN s.n % 5 = 0 THEN 'Team Leader'
         ELSE CASE s.department_no
              WHEN 2 THEN 'Sales Representative' WHEN 3 THEN 'Sales Representative'
              WHEN 4 THEN 'Buyer' WHEN 5 THEN 'Storekeeper' WHEN 6 THEN 'Dispatcher'
              WHEN 7 THEN 'Accountant' ELSE 'Service Agent' END
    END,
    s.department_no,
    CASE WHEN s.n = 1 THEN NULL
         WHEN s.n <= 8 THEN 1
         WHEN s.n % 5 = 0 THEN s.department_no
         ELSE coalesce((SELECT max(l.n) FROM staff l
                        WHERE l.n > 8 AND l.n < s.n AND l.n % 5 = 0
                          AND l.department_no = s.department_no), s.department_no)
    END,
    date('2004-03-01', '+' || (s.n * 113 + s.n * s.n * 11 % 400) || ' days'),
    CASE WHEN s.n > 8 AND s.n % 17 = 3
         THEN date('2021-06-30', '+' || (s.n * 19) || ' days') END,
    CASE WHEN s.n = 1 THEN 142000 WHEN s.n <= 8 THEN 82000 + s.n * 1750
         WHEN s.n % 5 = 0 THEN 58000 + s.n * 130 ELSE 33500 + s.n * 7919 % 14900 END,
    CASE WHEN s.department_no IN (2, 3) AND s.n > 8 THEN 1.5 + s.n % 7 * 0.25 END,
    CASE WHEN s.n % 6 = 1 AND s.n > 8 THEN p.city ELSE d.city END,
    CASE WHEN s.n % 6 = 1 AND s.n > 8 THEN p.country_code
         ELSE (SELECT country_code FROM places WHERE city = d.city) END,
    CASE WHEN s.n % 9 <> 4 THEN
        printf('+%d 5550 %d', (SELECT dial FROM places WHERE city = d.city), 200 + s.n) END
FROM staff s
JOIN departments d ON d.department_no = s.department_no
JOIN given_names g ON g.pos = 1 + s.n * 12 % 31
JOIN family_names f ON f.pos = 1 + s.n * 23 % 37
JOIN places p ON p.pos = 1 + s.n * 7 % 29
ORDER BY s.n;

-- The square of a number modulo a prime leaves out half of the remainders and doubles the others:
-- some cities have many customers, some none.
WITH RECURSIVE numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 240)
INSERT INTO customers
SELECT 1000 + n,
    f.name || ' ' || t.name || CASE p.country_code
        WHEN 'DE' THEN ' GmbH' WHEN 'AT' THEN ' GmbH' WHEN 'CH' THEN ' AG' WHEN 'GB' THEN ' Ltd'
        WHEN 'IE' THEN ' Ltd' WHEN 'FR' THEN ' SARL' WHEN 'SE' THEN ' AB' WHEN 'NO' THEN ' AS'
        WHEN 'DK' THEN ' ApS' WHEN 'NL' THEN ' BV' WHEN 'IT' THEN ' SpA' WHEN 'ES' THEN ' SL'
        WHEN 'PT' THEN ' Lda' WHEN 'CZ' THEN ' sro' WHEN 'US' THEN ' Inc' WHEN 'CA' THEN ' Inc'
        ELSE '' END,
    CASE WHEN n % 11 <> 6 THEN g.name || ' ' || c.name END,
    (1 + n * 37 % 140) || ' ' || s.name,
    p.city,
    p.postcode || printf('%02d', n * 3 % 40),
    p.country_code,
    CASE WHEN n % 13 <> 5 THEN printf('+%d %d %06d', p.dial, 20 + n % 70, n * 7919 % 1000000) END,
    CASE WHEN n % 10 <> 9 THEN r.employee_no END,
    CASE WHEN n % 7 <> 2 THEN 5000 + n * 41 % 19 * 2500 END,
    date('2015-01-05', '+' || (n * 8 + n * n % 23) || ' days'),
    n % 29 = 12
FROM numbers
JOIN places p ON p.pos = 1 + (n * n + n / 9) % 29
JOIN family_names f ON f.pos = 1 + n * 5 % 37
JOIN trades t ON t.pos = 1 + n % 11
JOIN given_names g ON g.pos = 1 + n * 17 % 31
JOIN family_names c ON c.pos = 1 + n * 26 % 37
JOIN streets s ON s.pos = 1 + n * 4 % 13
JOIN (SELECT employee_no, row_number() OVER (ORDER BY employee_no) AS rank,
             count(*) OVER () AS many
      FROM employees WHERE department_no IN (2, 3) AND left_on IS NULL) r
    ON r.rank = 1 + n * 3 % r.many
ORDER BY n;

INSERT INTO shippers VALUES
    (1, 'Blue Arrow Freight', '+31 10 555 0140', 1.20),
    (2, 'Harbour Express', '+49 40 555 0177', 1.85),
    (3, 'Overland Parcels', '+44 20 5550 0163', 0.95), (4, 'Skyline Air Cargo', NULL, 4.60),
    (5, 'Canal Barge Lines', '+31 20 555 0119', 0.40);

WITH RECURSIVE numbers (n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM numbers WHERE n < 155)
INSERT INTO parts
SELECT 100 + n, m.name || ' ' || s.name, s.category,
    round(s.price * m.factor, 2),
    CASE WHEN n % 19 <> 8 THEN round(s.grams * (0.4 + m.factor * 0.5) / 1000, 3) END,
    (n * n * 37 + n * 101) % 431,
    20 + n % 5 * 15,
    date('2012-02-01', '+' || (n * 23) || ' days'),
    n % 23 = 9
FROM numbers
JOIN materials m ON m.pos = 1 + n % 12
JOIN shapes s ON s.pos = 1 + n % 13
ORDER BY n;

WITH RECURSIVE numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 28)
INSERT INTO suppliers
SELECT 500 + n, f.name || ' & ' || f2.name, p.city, p.country_code,
    CASE WHEN n % 6 <> 5 THEN printf('+%d 555 %04d', p.dial, n * 353 % 10000) END,
    CASE WHEN n % 5 <> 3 THEN 1 + n * 7 % 5 END
FROM numbers
JOIN family_names f ON f.pos = 1 + n * 11 % 37
JOIN family_names f2 ON f2.pos = 1 + (n * 11 + 8) % 37
JOIN places p ON p.pos = 1 + n * 9 % 29
ORDER BY n;

-- One to three suppliers a part, never one twice; the last three suppliers deliver nothing.
WITH RECURSIVE choices (part, choice) AS (
    SELECT 0, 0
    UNION ALL
    SELECT CASE WHEN choice < part % 3 THEN part ELSE part + 1 END,
           CASE WHEN choice < part % 3 THEN choice + 1 ELSE 0 END
    FROM choices WHERE part < 155 OR choice < part % 3)
INSERT INTO part_suppliers
SELECT 100 + part, 501 + (part * 7 + choice * 9) % 25,
    round(list_price * (52 + (part * 3 + choice * 5) % 21) / 100, 2),
    CASE WHEN (part + choice) % 12 <> 7 THEN 2 + (part * 5 + choice * 11) % 30 END,
    choice = 0
FROM choices
JOIN parts ON part_no = 100 + part
ORDER BY part, choice;

-- Seven of eight customers have ordered. The square gives a few of them most of the orders.
-- Orders fall on working days: the first date is a Monday.
CREATE TEMP TABLE buyers AS
SELECT row_number() OVER (ORDER BY customer_no * 89 % 241) - 1 AS rank, customer_no
FROM customers WHERE customer_no % 8 <> 3;

WITH RECURSIVE numbers (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM numbers WHERE n < 1500),
days (n, day, pick) AS (
    SELECT n, n * 1040 / 1500, n * 617 % 1009 / 1009.0 FROM numbers)
INSERT INTO orders (order_no, customer_no, employee_no, ordered_on, shipped_on, shipper_no, status,
                    freight)
SELECT 20000 + d.n, b.customer_no,
    coalesce(c.sales_rep_no, 2),
    date('2021-01-04', '+' || (d.day / 5 * 7 + d.day % 5) || ' days'),
    CASE WHEN d.n % 47 = 11 OR d.n > 1470 THEN NULL
         ELSE date('2021-01-04', '+' || (d.day / 5 * 7 + d.day % 5 + 1 + d.n % 9) || ' days') END,
    CASE WHEN d.n % 47 = 11 OR d.n > 1470 THEN NULL ELSE 1 + d.n * 3 % 5 END,
    CASE WHEN d.n % 47 = 11 THEN 'cancelled' WHEN d.n > 1470 THEN 'open' ELSE 'shipped' END,
    round(6 + d.n * 37 % 90 * 0.45, 2)
FROM days d
JOIN buyers b
    ON b.rank = CAST(d.pick * d.pick * (SELECT count(*) FROM buyers) AS INTEGER)
JOIN customers c ON c.customer_no = b.customer_no
ORDER BY d.n;

WITH RECURSIVE lines (n, line, last) AS (
    SELECT 1, 1, 3
    UNION ALL
    SELECT CASE WHEN line < last THEN n ELSE n + 1 END,
           CASE WHEN line < last THEN line + 1 ELSE 1 END,
           CASE WHEN line < last THEN last ELSE 1 + (n + 1) * (n + 1) % 7 END
    FROM lines WHERE n < 1500 OR line < last)
INSERT INTO items
SELECT 20000 + n, line, part_no,
    1 + (n * 11 + line * 17) % 48,
    round(list_price * CASE WHEN n < 700 THEN 0.94 ELSE 1 END, 2),
    CASE (n + line * 3) % 9 WHEN 2 THEN 5 WHEN 5 THEN 10 WHEN 7 THEN 12.5 END
FROM lines
JOIN parts ON part_no = 100 + (n * 29 + line * 53) % 156
ORDER BY n, line;

UPDATE orders SET total = (
    SELECT round(sum(quantity * unit_price * (100 - coalesce(discount, 0)) / 100)
                 + orders.freight, 2)
    FROM items WHERE items.order_no = orders.order_no);

-- Shipped orders are paid at once or in two parts; some are not paid yet.
INSERT INTO payments (order_no, paid_at, amount, method, reference)
SELECT order_no,
    datetime(shipped_on, '+' || (part * 21 + order_no % 20) || ' days',
             '+' || (8 * 60 + order_no * 13 % 560) || ' minutes'),
    CASE WHEN order_no % 6 <> 1 THEN total
         WHEN part = 0 THEN round(total / 2, 2)
         ELSE round(total - round(total / 2, 2), 2) END,
    CASE order_no % 4 WHEN 0 THEN 'card' WHEN 3 THEN 'cash' ELSE 'transfer' END,
    CASE WHEN order_no % 4 <> 3 THEN printf('R-%d-%d', order_no, part + 1) END
FROM orders
JOIN (SELECT 0 AS part UNION ALL SELECT 1) ON part = 0 OR order_no % 6 = 1
WHERE status = 'shipped' AND order_no % 31 <> 5
ORDER BY order_no, part;

CREATE INDEX employees_by_department ON employees (department_no);

CREATE INDEX customers_by_country ON customers (country_code);

CREATE INDEX orders_by_customer ON orders (customer_no);

CREATE INDEX items_by_part ON items (part_no);

CREATE INDEX part_suppliers_by_supplier ON part_suppliers (supplier_no);

CREATE INDEX payments_by_order ON payments (order_no);

CREATE VIEW customer_sales AS
SELECT c.customer_no, c.name, c.city, n.name AS country, count(o.order_no) AS orders,
       coalesce(sum(o.total), 0) AS sales, max(o.ordered_on) AS last_order
FROM customers c
JOIN countries n ON n.country_code = c.country_code
LEFT JOIN orders o ON o.customer_no = c.customer_no AND o.status <> 'cancelled'
GROUP BY c.customer_no, c.name, c.city, n.name;

CREATE VIEW parts_to_reorder AS
SELECT p.part_no, p.description, p.in_stock, p.reorder_level, s.name AS supplier, ps.cost,
       ps.lead_days
FROM parts p
JOIN part_suppliers ps ON ps.part_no = p.part_no AND ps.preferred = 1
JOIN suppliers s ON s.supplier_no = ps.supplier_no
WHERE p.in_stock < p.reorder_level AND p.discontinued = 0;
