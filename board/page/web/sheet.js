// Sheets, as the board sends what it shows: tables of texts.

// The rows of a table as objects, their members named as its columns; none when it is not there.
export function rowsOf(sheet, name) {
  const table = sheet.sections.find((section) => section.name === name);
  if (!table) return [];
  return table.rows.map(({ cells }) => {
    const row = {};
    table.columns.forEach((column, i) => { row[column] = cells[i] ?? ''; });
    return row;
  });
}

// The entries of a cell that holds a list.
export const listOf = (cell) => (cell ? cell.split('\n') : []);
