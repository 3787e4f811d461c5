// Making and keeping nodes. Whatever agents wrote passes `shown` and becomes text, never markup.

const CONTROL = /[\u0000-\u0008\u000b-\u001f\u007f-\u009f\u061c\u200e\u200f\u2028\u2029\u202a-\u202e\u2066-\u2069\ufeff]/g;
const ADDRESS = /https?:\/\/[^\s<>"'`\u0000-\u001f]+[^\s<>"'`.,;:!?)\]}\u0000-\u001f]/g;

// The text with every character that steers a reader's screen rather than says something as a mark.
export function shown(text) {
  return String(text ?? '').replace(CONTROL, (c) => {
    const code = c.codePointAt(0);
    if (code < 0x20) return String.fromCodePoint(0x2400 + code);
    if (code === 0x7f) return '\u2421';
    return `\u27e8U+${code.toString(16).toUpperCase().padStart(4, '0')}\u27e9`;
  });
}

// A node with properties and children: `on` holds handlers, `data` what goes into the dataset, `vars`
// custom properties; a property that is null or false is left out. Texts become text nodes.
export function el(tag, props = {}, ...children) {
  const node = document.createElement(tag);
  for (const name in props) {
    const value = props[name];
    if (value === null || value === undefined || value === false) continue;
    if (name === 'class') node.className = value;
    else if (name === 'on') for (const kind in value) node.addEventListener(kind, value[kind]);
    else if (name === 'data') Object.assign(node.dataset, value);
    else if (name === 'vars') for (const each in value) node.style.setProperty(each, value[each]);
    else node.setAttribute(name, value === true ? '' : shown(value));
  }
  add(node, children);
  return node;
}

function add(node, children) {
  for (const child of children) {
    if (child === null || child === undefined || child === false) continue;
    if (Array.isArray(child)) add(node, child);
    else node.append(child instanceof Node ? child : shown(child));
  }
}

// Replaces what is in a node.
export function put(node, ...children) {
  node.replaceChildren();
  add(node, children);
}

// Sets a node's text only when it is another one, so that nothing is drawn for nothing.
export function say(node, text) {
  const words = shown(text);
  if (node.textContent !== words) node.textContent = words;
}

// A text in which addresses of the web are links; nothing else is.
export function linked(text) {
  const words = String(text ?? '');
  const nodes = [];
  let end = 0;
  for (const match of words.matchAll(ADDRESS)) {
    nodes.push(words.slice(end, match.index));
    nodes.push(el('a', { href: match[0], rel: 'noopener noreferrer', target: '_blank' }, match[0]));
    end = match.index + match[0].length;
  }
  nodes.push(words.slice(end));
  return nodes.filter((piece) => piece !== '');
}

// Makes the children of a node those of the items, in their order: nodes of known keys stay as they
// are and are told of their item, and only what is not in its place is moved.
export function keep(parent, items, keyOf, make, update) {
  const old = parent.kept ?? new Map();
  const now = new Map();
  for (const item of items) {
    const key = keyOf(item);
    const node = old.get(key) ?? make(item);
    old.delete(key);
    now.set(key, node);
    update?.(node, item);
  }
  for (const node of old.values()) node.remove();
  let place = parent.firstChild;
  for (const node of now.values()) {
    if (node === place) place = place.nextSibling;
    else parent.insertBefore(node, place);
  }
  parent.kept = now;
}

const PAINT_MS = 500;

// Calls `then` once when what has changed so far has been painted, or after so long: a tab that nobody
// sees, or sees no longer, paints nothing.
export function afterPaint(then) {
  let isDone = false;
  const once = () => {
    if (!isDone) then();
    isDone = true;
  };
  setTimeout(once, PAINT_MS);
  requestAnimationFrame(() => requestAnimationFrame(() => setTimeout(once, 0)));
}

// A node of a picture.
export function svg(tag, attributes = {}, ...children) {
  const node = document.createElementNS('http://www.w3.org/2000/svg', tag);
  for (const [name, value] of Object.entries(attributes)) node.setAttribute(name, shown(value));
  put(node, ...children);
  return node;
}

// An id as it is read out: t000012 is t12.
export const short = (id) => id.replace(/^([td])0+(?=\d)/, '$1');

// A link that opens a task or a discussion.
export const linkTo = (id, ...children) =>
  el('a', { href: `#${id}`, class: 'id' }, ...(children.length ? children : [short(id)]));
