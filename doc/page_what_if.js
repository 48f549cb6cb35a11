"use strict";
// What if: a device that lives in the page (evaluator.js), so that a reader changes a value and sees
// ranges, existence and values follow.
(() => {
  const MANY_INSTANCES = 8;
  const MANY_NAMES = 5000;
  const MANY_NUMBERS = 40;
  const byId = (id) => document.getElementById(id);
  const data = JSON.parse(byId("device-data").textContent);
  const cards = new Map([...document.querySelectorAll("article[id^='p-']")].map(
    (card) => [card.id.slice(2), card]));
  const nameField = byId("trial-name");
  const valueField = byId("trial-value");
  const slider = byId("trial-slider");
  let device;

  const baseOf = (name) => name.split("[", 1)[0];
  const suffixOf = (name) => name.slice(baseOf(name).length);
  // What only the device itself sets is set as it does.
  const isStatus = (name) => /^ro/.test(cards.get(baseOf(name))?.dataset.a ?? "");

  function element(tag, text, attributes = {}) {
    const made = document.createElement(tag);
    made.textContent = text;
    for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
    return made;
  }

  // ---- What an instance is ------------------------------------------------------------------------

  function rangeText({ spans = [], texts = [], refused }) {
    if (refused) return "no range";
    const items = spans.map(([low, high]) => (low === high ? `${low}` : `${low} … ${high}`)).concat(texts);
    return items.length > 0 ? items.join(", ") : "any value";
  }
  function stateText(name) {
    if (!device.exists(name)) return "absent";
    const value = device.value(name);
    const access = device.writable(name) || isStatus(name) ? "" : "; read-only";
    return `${value === "" ? "empty" : value}, of ${rangeText(device.range(name))}${access}`;
  }

  // One line for all instances that are alike.
  function nowLines(base) {
    const names = device.instances(base);
    const byState = new Map();
    for (const name of names.slice(0, MANY_INSTANCES)) {
      const state = stateText(name);
      byState.set(state, [...(byState.get(state) ?? []), suffixOf(name)]);
    }
    const lines = [...byState].map(([state, suffixes]) => {
      const isWhole = byState.size === 1;
      return isWhole ? state : `${suffixes.join(" ")} ${state}`;
    });
    const more = names.length - MANY_INSTANCES;
    return more > 0 ? [...lines, `and ${more} more`] : lines;
  }

  // ---- Cards: a line that says what is now, once the card is seen -----------------------------------

  const seen = new Set();
  function showNow(base) {
    const card = cards.get(base);
    let now = card.querySelector(".live");
    if (!now) {
      const place = element("dd", "");
      now = element("div", "", { class: "live" });
      const button = element("button", "What if …", { type: "button", class: "try", "aria-label": `What if … ${base}` });
      button.addEventListener("click", () => choose(device.instances(base)[0] ?? base));
      place.append(now, button);
      card.querySelector("dl").append(element("dt", "Now"), place);
    }
    now.replaceChildren(...nowLines(base).map((line) => element("div", line)));
  }
  const watcher = new IntersectionObserver((entries) => {
    for (const { target, isIntersecting } of entries) {
      const base = target.id.slice(2);
      if (!isIntersecting) {
        seen.delete(base);
      } else {
        seen.add(base);
        showNow(base);
      }
    }
  });

  // ---- The panel ----------------------------------------------------------------------------------

  function showState() {
    const name = nameField.value;
    const isKnown = device.instances(baseOf(name)).includes(name);
    byId("trial-state").textContent = isKnown ? `Now ${stateText(name)}` : "";
    const { spans = [], texts = [] } = isKnown ? device.range(name) : {};
    const offered = [...texts];
    for (const [low, high] of spans) {
      for (let number = low; number <= high && offered.length < MANY_NUMBERS; ++number) offered.push(`${number}`);
    }
    byId("trial-values").replaceChildren(...offered.map((value) => element("option", value)));
    slider.hidden = spans.length !== 1 || texts.length > 0 || spans[0][0] === spans[0][1];
    if (slider.hidden) return;
    [slider.min, slider.max] = spans[0];
    slider.value = device.value(name);
  }

  function choose(name) {
    byId("trial").open = true;
    nameField.value = name;
    valueField.value = device.value(name);
    showState();
    valueField.focus();
  }

  function linked(name) {
    const base = baseOf(name);
    return cards.has(base) ? element("a", name, { href: `#p-${encodeURIComponent(base)}` }) : element("code", name);
  }
  function note(asked, result) {
    const entry = element("li", "");
    entry.append(element("b", asked));
    if (result.refused) entry.append(element("div", result.refused, { class: "refused" }));
    if (!result.refused && result.changes.length === 0) entry.append(element("div", "nothing changes"));
    for (const { name, value } of result.changes) {
      const line = element("div", "");
      line.append(linked(name), ` = ${value}`);
      entry.append(line);
    }
    byId("trial-changes").prepend(entry);
  }
  function showChanges(changes) {
    const changed = new Set(changes.map(({ name }) => baseOf(name)));
    for (const [base, card] of cards) card.classList.toggle("now", changed.has(base));
    for (const base of seen) showNow(base);
    showState();
  }

  function restart() {
    device = new OstrelDevice(data);
    const { refused } = device.bringUp();
    byId("trial-changes").replaceChildren();
    if (refused) note("Start", { refused, changes: [] });
    showChanges([]);
  }
  function set(event) {
    event.preventDefault();
    const name = nameField.value.trim();
    const value = valueField.value;
    const result = isStatus(name) ? device.setStatus(name, value) : device.set(name, value);
    note(`${name} = ${value}`, result);
    showChanges(result.changes);
  }

  byId("trial-form").addEventListener("submit", set);
  byId("trial-restart").addEventListener("click", restart);
  nameField.addEventListener("input", showState);
  slider.addEventListener("input", () => { valueField.value = slider.value; });

  // The page is shown before the device comes up.
  setTimeout(() => {
    restart();
    byId("what-if").hidden = false;
    const names = [];
    for (const base of cards.keys()) {
      if (names.length < MANY_NAMES) names.push(...device.instances(base).slice(0, MANY_NAMES));
    }
    byId("trial-names").replaceChildren(...names.map((name) => element("option", name)));
    for (const card of cards.values()) watcher.observe(card);
  }, 0);
})();
