"use strict";
// Search and filters: what is shown of the parameters.
(() => {
  const byId = (id) => document.getElementById(id);
  const cards = [...document.querySelectorAll("article[id^='p-']")];
  const entries = new Map([...document.querySelectorAll(".toc li li a")].map(
    (link) => [decodeURIComponent(link.hash.slice(1)), link.parentElement]));
  const texts = new Map();
  const textOf = (card) => {
    if (!texts.has(card)) texts.set(card, card.textContent.toLowerCase());
    return texts.get(card);
  };
  const indicesOf = (card) => [...card.querySelectorAll(".i")].map((link) => link.textContent.slice(1, -1));

  function show() {
    const words = byId("search").value.toLowerCase().split(/\s+/).filter(Boolean);
    const access = byId("access").value;
    const index = byId("index").value;
    const level = byId("level").value;
    let count = 0;
    for (const card of cards) {
      const shown = (!access || card.dataset.a === access) && (!level || card.dataset.l === level) &&
        (!index || indicesOf(card).includes(index)) && words.every((word) => textOf(card).includes(word));
      card.hidden = !shown;
      const entry = entries.get(card.id);
      if (entry) entry.hidden = !shown;
      if (shown) ++count;
    }
    for (const group of document.querySelectorAll("section.g, .toc > li")) {
      group.hidden = !group.querySelector("article:not([hidden]), li:not([hidden])");
    }
    const isFiltered = words.length > 0 || access || index || level;
    byId("found").textContent = isFiltered ? `${count} of ${cards.length} parameters` : "";
  }

  byId("filter").addEventListener("input", show);
  byId("filter").addEventListener("submit", (event) => event.preventDefault());
  document.addEventListener("keydown", (event) => {
    const isTyping = /^(INPUT|SELECT|TEXTAREA)$/.test(event.target.tagName);
    if (event.key === "/" && !isTyping) {
      event.preventDefault();
      byId("search").focus();
    } else if (event.key === "Escape" && event.target.id === "search") {
      byId("search").value = "";
      show();
    }
  });
  // What a link leads to is shown, also where a filter has hidden it.
  function targetOfAddress() {
    try {
      return document.getElementById(decodeURIComponent(location.hash.slice(1)));
    } catch {
      return null;  // no address that this page has written
    }
  }
  function reveal() {
    const target = targetOfAddress();
    if (!target || !target.closest("article") || !target.closest("[hidden]")) return;
    byId("filter").reset();
    show();
    target.scrollIntoView();
  }
  addEventListener("hashchange", reveal);
  show();
  reveal();
})();
