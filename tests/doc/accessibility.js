// What keeps a person who uses a keyboard, a screen reader or little contrast from a page: returns a
// list of sentences, empty where there is nothing. Runs in the page.
"use strict";
const findings = [];
const report = (element, text) => findings.push(`${element.outerHTML.slice(0, 90)}: ${text}`);
const all = (selector) => [...document.querySelectorAll(selector)];
const isShown = (element) => element.checkVisibility({ visibilityProperty: true });

// Names and roles.
const namedBy = (element) => (element.getAttribute("aria-labelledby") ?? "").split(" ").map(
  (id) => document.getElementById(id)?.textContent ?? "").join(" ");
function nameOf(element) {
  const labels = [...(element.labels ?? [])].map((label) => label.textContent).join(" ");
  return (element.getAttribute("aria-label") || namedBy(element) || labels || element.textContent).trim();
}
for (const element of all("a, button, input, select, summary, [role=region], [role=group], nav, aside, svg:not([aria-hidden])")) {
  if (nameOf(element) === "") report(element, "has no name");
}
for (const element of all("main > section")) {
  if (namedBy(element).trim() === "") report(element, "has no heading for a name");
}
for (const image of all("svg[aria-hidden] :is(a, [tabindex])")) report(image, "can be reached, but not be heard");
for (const input of all("input, select")) {
  if (input.id === "" && !input.closest("label")) report(input, "has no label");
}
const ids = new Map();
for (const element of all("[id]")) {
  if (ids.has(element.id)) report(element, "has the id of another element");
  ids.set(element.id, element);
}
for (const element of all("[aria-labelledby], [aria-describedby], label[for]")) {
  const names = ["aria-labelledby", "aria-describedby", "for"].map((name) => element.getAttribute(name) ?? "");
  for (const id of names.join(" ").split(" ").filter(Boolean)) {
    if (!ids.has(id)) report(element, `refers to "${id}", which is nowhere`);
  }
}
for (const link of all("a[href^='#']")) {
  const id = decodeURIComponent(link.getAttribute("href").slice(1));
  if (!ids.has(id)) report(link, "leads nowhere");
}

// Structure.
if (!document.documentElement.lang) report(document.documentElement, "has no language");
if (document.title.trim() === "") report(document.head, "has no title");
for (const selector of ["main", "h1", "header"]) {
  if (all(selector).length !== 1) report(document.body, `has not one ${selector}`);
}
let level = 0;
for (const heading of all("h1, h2, h3, h4, h5, h6").filter(isShown)) {
  const next = Number(heading.tagName[1]);
  if (next > level + 1) report(heading, `comes behind a heading of level ${level}`);
  level = next;
}
const children = { UL: ["LI"], OL: ["LI"], DL: ["DT", "DD", "DIV"], TR: ["TH", "TD"] };
for (const [parent, allowed] of Object.entries(children)) {
  for (const element of all(parent)) {
    for (const child of element.children) {
      if (!allowed.includes(child.tagName)) report(child, `is in a ${parent}`);
    }
  }
}
for (const cell of all("th")) if (!cell.scope) report(cell, "heads neither a row nor a column");
for (const table of all("table")) if (!table.caption) report(table, "has no caption");

// Keyboard.
for (const element of all("[tabindex]")) if (element.tabIndex > 0) report(element, "breaks the order of the keyboard");
for (const element of all("*").filter(isShown)) {
  const style = getComputedStyle(element);
  const scrolls = /auto|scroll/.test(style.overflowX + style.overflowY) &&
    (element.scrollHeight > element.clientHeight + 1 || element.scrollWidth > element.clientWidth + 1);
  const isReached = element.tabIndex >= 0 || element.querySelector("a[href], button, input, select, [tabindex='0']");
  if (scrolls && !isReached) report(element, "scrolls, but not by the keyboard");
}

// Contrast: 4.5 for text, 3 for large text.
function colourOf(text) {
  const parts = text.match(/[\d.]+/g).map(Number);
  const scale = text.startsWith("color(") ? 255 : 1;
  return { rgb: parts.slice(0, 3).map((part) => part * scale), alpha: parts[3] ?? 1 };
}
const over = (top, ground) => top.rgb.map((part, i) => part * top.alpha + ground[i] * (1 - top.alpha));
function groundOf(element) {
  if (!element) return [255, 255, 255];
  const { backgroundColor, fill } = getComputedStyle(element);
  // Text of a drawing is on the box beside it.
  const box = element.tagName === "text" ? element.parentElement.querySelector("rect") : null;
  const paint = box && element.parentElement.tagName === "a" ? getComputedStyle(box).fill : backgroundColor;
  return over(colourOf(paint), groundOf(element.parentElement));
}
function luminance(rgb) {
  const [r, g, b] = rgb.map((part) => {
    const value = part / 255;
    return value <= 0.04045 ? value / 12.92 : ((value + 0.055) / 1.055) ** 2.4;
  });
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
for (let node = walker.nextNode(); node; node = walker.nextNode()) {
  const element = node.parentElement;
  if (!node.data.trim() || /^(SCRIPT|STYLE|OPTION)$/.test(element.tagName) || !isShown(element)) continue;
  const style = getComputedStyle(element);
  const ground = groundOf(element);
  const ink = over(colourOf(element.tagName === "text" ? style.fill : style.color), ground);
  const [light, dark] = [luminance(ink), luminance(ground)].sort((a, b) => b - a);
  const contrast = (light + 0.05) / (dark + 0.05);
  const size = parseFloat(style.fontSize);
  const isLarge = size >= 24 || (size >= 18.66 && Number(style.fontWeight) >= 700);
  if (contrast < (isLarge ? 3 : 4.5)) report(element, `has a contrast of ${contrast.toFixed(2)}`);
}
return findings;
