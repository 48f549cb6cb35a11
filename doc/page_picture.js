"use strict";
// The picture: what belongs to the node that is pointed at, and the groups that are opened.
(() => {
  const data = document.getElementById("graph");
  if (!data) return;
  const { follows, groups } = JSON.parse(data.textContent);
  const followedBy = follows.map(() => []);
  follows.forEach((list, place) => list.forEach((other) => followedBy[other].push(place)));
  const status = document.getElementById("cone");

  // What `starts` lead to along `edges`, themselves left out.
  function reached(starts, edges) {
    const found = new Set();
    const open = [...starts];
    while (open.length > 0) {
      for (const next of edges[open.pop()]) {
        if (!found.has(next)) {
          found.add(next);
          open.push(next);
        }
      }
    }
    for (const start of starts) found.delete(start);
    return found;
  }
  const parametersOf = (node) => (node.dataset.p ? [Number(node.dataset.p)] : groups[Number(node.dataset.g)]);
  const counted = (count) => (count === 1 ? "1 parameter" : `${count} parameters`);

  function light(node) {
    const picture = node.ownerSVGElement;
    const own = parametersOf(node);
    const before = reached(own, follows);
    const behind = reached(own, followedBy);
    const cone = new Set([...own, ...before, ...behind]);
    const nodes = [...picture.querySelectorAll(".n")];
    for (const other of nodes) other.classList.toggle("lit", parametersOf(other).some((place) => cone.has(place)));
    for (const edge of picture.querySelectorAll("[data-e]")) {
      edge.classList.toggle("lit", edge.dataset.e.split(" ").every((place) => nodes[place].classList.contains("lit")));
    }
    picture.classList.add("dim");
    status.textContent = `${node.textContent} follows ${counted(before.size)}; ${counted(behind.size)} ` +
      `${behind.size === 1 ? "follows" : "follow"} it.`;
  }
  function darken(picture) {
    picture.classList.remove("dim");
    for (const lit of picture.querySelectorAll(".lit")) lit.classList.remove("lit");
    status.textContent = "";
  }
  const section = document.getElementById("picture");
  const nodeAt = (event) => event.target.closest && event.target.closest("svg.d .n");
  for (const name of ["pointerover", "focusin"]) {
    section.addEventListener(name, (event) => nodeAt(event) && light(nodeAt(event)));
  }
  for (const name of ["pointerout", "focusout"]) {
    section.addEventListener(name, (event) => nodeAt(event) && darken(nodeAt(event).ownerSVGElement));
  }

  const figures = [...section.querySelectorAll("figure")];
  function open() {
    const asked = document.getElementById(location.hash.slice(1));
    const isFigure = figures.includes(asked);
    const shown = isFigure ? asked : figures.find((figure) => !figure.hidden) || figures[0];
    for (const figure of figures) figure.hidden = figure !== shown;
    if (isFigure) {
      shown.scrollIntoView({ block: "nearest" });
      shown.focus({ preventScroll: true });
    }
  }
  for (const figure of figures.slice(1)) figure.hidden = true;
  addEventListener("hashchange", open);
  open();
})();
