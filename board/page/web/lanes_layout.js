// Where the bars of the picture of who did what when stand: moves in, lanes out. Draws nothing.

// How a move ends a claim.
const ENDS = {
  taskCompleted: 'done',
  taskReleased: 'released',
  taskLapsed: 'lapsed',
  taskHandedOver: 'handed',
  taskRejected: 'declined',
  taskDeleted: 'deleted',
};

// The claims as bars {task, by, from, to, end, asks: [{from, to}]}; one that goes on has the end "now".
export function claimsOf(moves, nowMs) {
  const open = new Map();
  const bars = [];
  const end = (task, at, how) => {
    const bar = open.get(task);
    if (!bar) return;
    open.delete(task);
    bar.to = at;
    bar.end = how;
    const ask = bar.asks.at(-1);
    if (ask && !ask.to) ask.to = at;
  };
  const begin = (task, by, at) => {
    const bar = { task, by, from: at, to: nowMs, end: 'now', asks: [] };
    open.set(task, bar);
    bars.push(bar);
  };
  for (const { at, by, move, task, what } of moves) {
    const ms = Number(at);
    if (move === 'taskClaimed') {
      end(task, ms, 'released');
      begin(task, by, ms);
    } else if (ENDS[move]) {
      end(task, ms, ENDS[move]);
      const heir = move === 'taskHandedOver' && /\b[A-Z]{2}\d\b/.exec(what)?.[0];
      if (heir) begin(task, heir, ms);
    } else if (move === 'taskBlocked') {
      open.get(task)?.asks.push({ from: ms, to: 0 });
    } else if (move === 'taskUnblocked') {
      const ask = open.get(task)?.asks.at(-1);
      if (ask && !ask.to) ask.to = ms;
    }
  }
  return bars;
}

// The lanes, one an agent in the order in which they first took something: {by, rows: [[bar, …], …]},
// with as many rows as the agent held tasks at once.
export function lanesOf(bars) {
  const lanes = new Map();
  for (const bar of [...bars].sort((a, b) => a.from - b.from)) {
    if (!lanes.has(bar.by)) lanes.set(bar.by, { by: bar.by, rows: [] });
    const { rows } = lanes.get(bar.by);
    const free = rows.find((row) => row.at(-1).to <= bar.from);
    if (free) free.push(bar);
    else rows.push([bar]);
  }
  return [...lanes.values()];
}

const MINUTE = 60_000;
const STEPS = [1, 5, 15, 30, 60, 180, 360, 720, 1440, 2880, 10080, 43200].map((minutes) => minutes * MINUTE);

// The moments that a scale over this length of time is marked with: at most so many, round ones by the
// clock on the wall.
export function ticksOf(from, to, atMost) {
  const step = STEPS.find((size) => (to - from) / size <= atMost) ?? STEPS.at(-1);
  const shift = new Date(from).getTimezoneOffset() * MINUTE;
  const ticks = [];
  for (let at = Math.ceil((from - shift) / step) * step + shift; at <= to; at += step) ticks.push(at);
  return ticks;
}
