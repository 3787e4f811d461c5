// What is being looked for: words, an agent, a state, a tag.

export const filter = { words: '', agent: '', column: '', tag: '' };

const watchers = [];

// Calls `tell()` whenever something else is looked for.
export function watchFilter(tell) { watchers.push(tell); }

export function setFilter(part, value) {
  if (filter[part] === value) return;
  filter[part] = value;
  for (const tell of watchers) tell();
}

export const isFiltering = () => Object.values(filter).some(Boolean);

// What a task can be filtered by beside its words: its type, role and resources.
export const tagsOf = (task) => [task.type, task.role, ...task.resources].filter(Boolean);

// Ids on which the server found the words: in briefs and logs, which the page does not have.
let found = new Set();
export function setFound(ids) {
  found = new Set(ids);
  for (const tell of watchers) tell();
}

const bare = (id) => id.replace(/^([td])0+/, '$1');

// Whether a task is among those that are looked for.
export function isWanted(task) {
  const { words, agent, column, tag } = filter;
  if (agent && task.holder !== agent && task.meantFor !== agent && task.filedBy !== agent) return false;
  if (column && task.column !== column) return false;
  if (tag && !tagsOf(task).includes(tag)) return false;
  if (!words) return true;
  const wanted = words.toLowerCase();
  return found.has(task.id) || bare(task.id) === bare(wanted) || task.id.includes(wanted)
    || task.title.toLowerCase().includes(wanted) || task.note.toLowerCase().includes(wanted)
    || tagsOf(task).some((text) => text.toLowerCase().includes(wanted));
}
