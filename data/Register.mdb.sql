-- The register of the family's add-ins. An add-in writes its Version into its row when it starts under its host;
-- everything else belongs to the installation.
CREATE TABLE Registry (
    AppName   TEXT PRIMARY KEY COLLATE NOCASE,
    Title     TEXT NOT NULL,
    Version   TEXT NOT NULL,
    ClassName TEXT NOT NULL,
    Enabled   INTEGER NOT NULL DEFAULT -1
);

-- Version 0.0.0: not started yet.
INSERT INTO Registry (AppName, Title, Version, ClassName) VALUES ('Horalink.mra', 'PBX Clock', '0.0.0', 'Horalink10013.cOLELayer');
