// Where the tasks of the picture of what waits on what stand: tasks in, places out. Draws nothing, and
// goes through no depth by calling itself.

// The open tasks in order of what must come before what: [{task, before: [ids], after: [ids], layer}].
function nodesOf(tasks) {
  const nodes = new Map(tasks.map((task) => [task.id, { task, before: [], after: [], layer: 0, tail: 1, next: null }]));
  for (const node of nodes.values()) {
    for (const id of new Set(node.task.waitsOn)) {
      const other = nodes.get(id);
      if (!other || other === node) continue;
      node.before.push(other);
      other.after.push(node);
    }
  }
  return nodes;
}

// The nodes so that each comes after those it waits on. One that waits on itself around corners, which
// a board does not allow, is left out.
function sorted(nodes) {
  const missing = new Map([...nodes.values()].map((node) => [node, node.before.length]));
  const order = [...missing].filter(([, count]) => count === 0).map(([node]) => node);
  for (let i = 0; i < order.length; ++i) {
    for (const node of order[i].after) {
      missing.set(node, missing.get(node) - 1);
      if (missing.get(node) === 0) order.push(node);
    }
  }
  return order;
}

// The longest chain of tasks that wait on each other, the first to be done first; the one with the
// smallest ids of several.
function longestChain(order) {
  for (const node of [...order].reverse()) {
    for (const after of node.after) {
      if (after.tail + 1 > node.tail) {
        node.tail = after.tail + 1;
        node.next = after;
      }
    }
  }
  const first = order.reduce((best, node) => (!best || node.tail > best.tail ? node : best), null);
  const chain = [];
  for (let node = first; node; node = node.next) chain.push(node.task.id);
  return chain.length > 1 ? chain : [];
}

// Puts each layer into the order of the middle of what its tasks wait on, so that lines cross less.
function arrange(layers) {
  layers.forEach((layer, i) => {
    if (i > 0) {
      for (const node of layer) {
        const places = node.before.map((before) => before.place);
        node.middle = places.reduce((sum, place) => sum + place, 0) / (places.length || 1);
      }
      layer.sort((a, b) => a.middle - b.middle || (a.task.id < b.task.id ? -1 : 1));
    }
    layer.forEach((node, place) => { node.place = place; });
  });
}

// The picture: {nodes: [{task, layer, place}], edges: [{from, to}], chain: [ids], alone: number}. What
// can be taken stands in layer 0, every other task one behind the last that it waits on. Tasks that wait
// on nothing, and on which nothing waits, follow in layer 0, at most so many; `alone` counts the rest.
export function graphOf(tasks, aloneAtMost = 40) {
  const nodes = nodesOf(tasks);
  const order = sorted(nodes);
  for (const node of order) node.layer = Math.max(0, ...node.before.map((before) => before.layer + 1));
  const isAlone = (node) => node.before.length === 0 && node.after.length === 0;
  const alone = order.filter(isAlone);
  const told = [...order.filter((node) => !isAlone(node)), ...alone.slice(0, aloneAtMost)];
  const layers = [];
  for (const node of told) (layers[node.layer] ??= []).push(node);
  arrange(layers);
  return {
    nodes: told.map(({ task, layer, place }) => ({ task, layer, place })),
    edges: told.flatMap((node) => node.before.map((before) => ({ from: before.task.id, to: node.task.id }))),
    chain: longestChain(order),
    alone: Math.max(0, alone.length - aloneAtMost),
  };
}
