// Compares databases that were imported with their originals, cell by cell, as an independent reader of the
// Jet format sees them: node compare-jet.mjs MODULES JET-FOLDER HORALINK-LNG
//
// MODULES is a folder into which `npm install mdb-reader` was run. Every file of the folder is imported; one
// that the reader can't open has to be refused. Exit status 1 for a difference, 77 where something is missing.
import { execFileSync, spawnSync } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, readdirSync, rmSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";

const [modules, folder, tool] = process.argv.slice(2);
for (const [isMissing, what] of [
  [!existsSync(folder), `there are no Jet files at ${folder}`],
  [!existsSync(join(modules, "node_modules/mdb-reader")), `run "npm install mdb-reader" in ${modules}`],
  [spawnSync("mdb-ver", ["--version"]).error, "mdbtools is not installed"],
]) {
  if (!isMissing) continue;
  console.log(`skipped: ${what}`);
  process.exit(77);
}
const resolved = createRequire(join(modules, "any.js")).resolve("mdb-reader");
const { default: Reader } = await import(pathToFileURL(resolved).href);

// Columns and rows of every table, binary data as {"blob": hexadecimal digits}.
const reading = `
import json, sqlite3, sys
base = sqlite3.connect(sys.argv[1])
plain = lambda cell: {"blob": cell.hex()} if isinstance(cell, bytes) else cell
tables = {}
for name, in base.execute("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY rowid").fetchall():
    rows = base.execute('SELECT * FROM "' + name.replace('"', '""') + '"')
    tables[name] = {"columns": [column[0] for column in rows.description], "rows": [list(map(plain, row)) for row in rows]}
json.dump(tables, sys.stdout)
`;

// What mdbtools can't work out: it gives no day ahead of this one, and none behind a million days.
const firstDay = Date.UTC(1899, 11, 30);
const lastDay = firstDay + 1e6 * 86400000;

function day(value) {
  if (value.getTime() < firstDay || value.getTime() > lastDay) return null;
  return new Date(Math.round(value.getTime() / 1000) * 1000).toISOString().slice(0, 19).replace("T", " ");
}
const hex = (value) => value.toString("hex");
const conversions = { boolean: (value) => (value ? -1 : 0), datetime: day, currency: Number, numeric: Number, ole: hex, binary: hex };

function expected(value, type) {
  return value === null || value === undefined ? null : (conversions[type] ?? ((same) => same))(value);
}

function actual(value, type) {
  if (value === null) return null;
  if (type === "currency" || type === "numeric") return Number(value);
  return typeof value === "object" ? value.blob : value;
}

let cells = 0;
let differences = 0;
function same(left, right, what) {
  if (JSON.stringify(left) === JSON.stringify(right)) return;
  ++differences;
  console.log(`different: ${what}: ${JSON.stringify(left)} and ${JSON.stringify(right)}`);
}

function compareTable(where, table, copy) {
  const columns = table.getColumns();
  same(columns.map((column) => column.name), copy.columns, `${where}, columns`);
  const rows = table.getData();
  same(rows.length, copy.rows.length, `${where}, number of rows`);
  rows.forEach((row, i) =>
    columns.forEach(({ name, type }, j) => {
      ++cells;
      same(expected(row[name], type), actual(copy.rows[i]?.[j] ?? null, type), `${where}, row ${i + 1}, ${name} (${type})`);
    })
  );
}

function opened(path) {
  try {
    const reader = new Reader(readFileSync(path));
    return { reader, tables: reader.getTableNames() };
  } catch {
    return null;
  }
}

function compareFile(name, scratch) {
  const path = join(folder, name);
  const copy = join(scratch, name);
  const original = opened(path);
  const run = spawnSync(tool, ["import", path, "--output", copy], { encoding: "utf8" });
  const isRefused = run.status === 1 && /encrypted|damaged/.test(run.stderr) && !existsSync(copy);
  if (!original) return same(isRefused, true, `${name} can't be read, and is refused: ${run.stderr}`);
  if (!existsSync(copy)) return same(false, true, `${name} is imported: ${run.stderr}`);
  const tables = JSON.parse(execFileSync("python3", ["-c", reading, copy], { maxBuffer: 1 << 30, encoding: "utf8" }));
  same(original.tables, Object.keys(tables), `${name}, tables`);
  for (const table of original.tables)
    if (tables[table]) compareTable(`${name}, ${table}`, original.reader.getTable(table), tables[table]);
}

const scratch = mkdtempSync(join(tmpdir(), "horalink-jet-"));
try {
  for (const name of readdirSync(folder).sort()) if (/\.(mdb|accdb)$/.test(name)) compareFile(name, scratch);
} finally {
  rmSync(scratch, { recursive: true });
}
console.log(`${cells} cells compared, ${differences} differences`);
process.exit(differences || !cells ? 1 : 0);
