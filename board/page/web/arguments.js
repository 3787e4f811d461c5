// The list of a helper's arguments, as the board shows it: each in single quotes, a blank between.

const ARGUMENT = /'([^']*(?:'\\''[^']*)*)'(?: |$)/gy;

// The arguments one by one; null when the text is no such list.
export function argumentsOf(shown) {
  const found = [...shown.matchAll(ARGUMENT)];
  if (found.reduce((length, [whole]) => length + whole.length, 0) !== shown.length) return null;
  if (found.length === 0 || shown.endsWith(' ')) return null;
  return found.map(([, argument]) => argument.replaceAll("'\\''", "'"));
}

const UNSEEN = /[\u2800\p{C}\p{Zl}\p{Zp}\p{Default_Ignorable_Code_Point}]|(?! )\p{Zs}/gu;

// An argument with a mark for every character that cannot be seen, and would make two of them look
// alike: line breaks, tabs, blanks that are no blank, marks of direction and of no width.
export function marked(argument) {
  return argument.replace(UNSEEN, (letter) => {
    const code = letter.codePointAt(0);
    if (code < 0x20) return String.fromCodePoint(0x2400 + code);
    return `\u27e8U+${code.toString(16).toUpperCase().padStart(4, '0')}\u27e9`;
  });
}
