PARAMETERS [d] DateTime;
SELECT * FROM (A INNER JOIN B ON A.x = B.y) LEFT JOIN [C c] ON B.z = [C c].z WHERE n = 'it''s' AND d > #1/1/1995# -- x
ORDER BY 1;