// Plays recorded talks (recorded_talk.h) with the evaluator, and compares every answer.
"use strict";

const comparison = { looks: 0, differences: [] };
const MOST_DIFFERENCES = 5;

const changesOf = (answer) => answer.changes.map(({ name, value }) => name + "=" + value);

function rangeText(range) {
  if (range.refused !== undefined) return range.refused;
  const spans = range.spans.map(([low, high]) => `${low}..${high} `);
  return spans.concat(range.texts.map((text) => `"${text}" `)).join("");
}

function stateOf(device, name) {
  const existence = device.exists(name) ? "exists" : "absent";
  const access = device.writable(name) ? "writable" : existence;
  const range = rangeText(device.range(name));
  return [device.value(name), access, device.defaultValue(name), range].join("|");
}

function playStep(device, step) {
  if (step.writes === undefined) return device.bringUp();
  return device.commit(
    step.writes.map(([name, value, isStatus]) =>
      value === null ? { name, isReset: true, isStatus } : { name, value, isStatus },
    ),
  );
}

function compareTalk(talk) {
  const differ = (step, what, expected, found) => {
    if (comparison.differences.length >= MOST_DIFFERENCES) return;
    const writes = talk.steps.slice(0, step + 1).map(({ writes }) => writes ?? "up");
    const { text } = talk;
    comparison.differences.push({ talk: talk.what, what, expected, found, step, writes, text });
  };
  const device = new OstrelDevice(talk.data);
  const states = talk.names.map(() => "");
  talk.steps.forEach((step, number) => {
    const answer = playStep(device, step);
    const told = ({ changes, refused, restless }) => JSON.stringify({ changes, refused, restless });
    const found = told({ ...answer, changes: changesOf(answer) });
    if (found !== told(step)) differ(number, "the answer", told(step), found);
    for (let i = 0; i < step.states.length; i += 2) states[step.states[i]] = step.states[i + 1];
    talk.names.forEach((name, i) => {
      ++comparison.looks;
      const state = stateOf(device, name);
      if (state !== states[i]) differ(number, name, states[i], state);
    });
  });
}

// Leaves nothing in the page but the outcome.
function showComparison() {
  const shown = document.createElement("pre");
  shown.textContent = "comparison " + JSON.stringify(comparison);
  document.documentElement.replaceChildren(shown);
}
