-- The database behind stock-report.csv; scripts/make-sample-database makes it.
CREATE TABLE articles (id INTEGER PRIMARY KEY, name TEXT NOT NULL, price REAL NOT NULL);
CREATE TABLE stores (id INTEGER PRIMARY KEY, town TEXT NOT NULL);
CREATE TABLE stock (
    article INTEGER NOT NULL REFERENCES articles(id),
    store INTEGER NOT NULL REFERENCES stores(id),
    pieces INTEGER NOT NULL
);
CREATE VIEW low AS
    SELECT articles.name AS name, stores.town AS town, stock.pieces AS pieces
    FROM stock JOIN articles ON articles.id = stock.article JOIN stores ON stores.id = stock.store
    WHERE pieces < 20 ORDER BY pieces;
INSERT INTO articles VALUES (1, 'bolt', 0.25), (2, 'nut', 0.1), (3, 'screw', 0.5), (4, 'washer', 0.05);
INSERT INTO stores VALUES (1, 'Basel'), (2, 'Lyon');
INSERT INTO stock VALUES (1, 1, 400), (1, 2, 120), (2, 1, 900), (2, 2, 15), (3, 1, 60), (3, 2, 8), (4, 2, 300);
