// Sheets, as the board sends what it shows: tables of texts.

// The rows of a table as objects, their members named as its columns; none when it is not there.
export function rowsOf(sheet, name) {
  const table = sheet.sections.find((section) => section.name === name);
  if (!table) return [];
  const { columns } = table;
  // Most cells say nothing: a copy of an empty row is made faster than a row of as many members.
  const empty = Object.fromEntries(columns.map((column) => [column, '']));
  return table.rows.map(({ cells }) => {
    const row = { ...empty };
    for (let i = 0; i < columns.length; ++i) if (cells[i]) row[columns[i]] = cells[i];
    return row;
  });
}

const NONE = Object.freeze([]);

// The entries of a cell that holds a list, which nobody changes.
export const listOf = (cell) => (cell ? cell.split('\n') : NONE);
