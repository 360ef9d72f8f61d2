// Full-text search without a server. search_index.py writes the searched texts to search-index.js: a script, because a page
// that is opened from file:// may load scripts but no other data.
"use strict";

const kMostResults = 30;
const kSnippetLength = 160;

const box = document.getElementById("search");
const field = box.querySelector("input");
const results = document.getElementById("search-results");

const isWordCharacter = character => character !== undefined && /[\p{L}\p{N}_]/u.test(character);

/** How well `word` fits `text`: 3 as a whole word, 2 at the start of one, 1 inside one, 0 not at all. */
function fit(text, word) {
    let best = 0;
    for (let at = text.indexOf(word); at >= 0 && best < 3; at = text.indexOf(word, at + 1)) {
        const starts = !isWordCharacter(text[at - 1]);
        const ends = !isWordCharacter(text[at + word.length]);
        best = Math.max(best, starts ? (ends ? 3 : 2) : 1);
    }
    return best;
}

/** The worth of a section for all `words`; 0 when one of them is not in it. */
function score(section, words) {
    let sum = section.lowHeading.replace(/\(\)$/, "") === words.join(" ") ? 100 : 0;
    for (const word of words) {
        const worth = 20 * fit(section.lowHeading, word) + 5 * fit(section.lowPage, word) + fit(section.lowText, word);
        if (worth === 0) return 0;
        sum += worth;
    }
    return sum;
}

/** The sections that have all `words`, the best first. */
function find(sections, words) {
    return sections.map(section => ({section, worth: score(section, words)}))
        .filter(({worth}) => worth > 0)
        .sort((left, right) => right.worth - left.worth)
        .map(({section}) => section);
}

/** The sections for a query, and the words found: "locking" finds "lock" when nothing has "locking". */
function search(sections, query) {
    const words = query.toLowerCase().split(/\s+/).filter(word => word !== "");
    if (words.length === 0) return {found: [], words};
    const found = find(sections, words);
    if (found.length > 0) return {found, words};
    const stems = words.map(word => word.replace(/(?<=..)(ing|ed|es|s)$/, ""));
    return {found: find(sections, stems), words: stems};
}

/** Calls `use` with all sections. The first call loads them. */
function withSections(use) {
    if (window.searchIndex) return use(window.searchIndex);
    const script = document.createElement("script");
    script.src = "search-index.js";
    script.onload = () => {
        window.searchIndex = window.searchIndex.map(([address, page, heading, text]) => ({
            address, page, heading, text,
            lowPage: page.toLowerCase(), lowHeading: heading.toLowerCase(), lowText: text.toLowerCase()
        }));
        use(window.searchIndex);
    };
    document.head.append(script);
}

function element(tag, text, ...children) {
    const made = document.createElement(tag);
    made.textContent = text;
    made.append(...children);
    return made;
}

/** The part of a section's text around the first of `words`, with each of them marked. */
function snippet(section, words) {
    const places = words.map(word => section.lowText.indexOf(word)).filter(at => at >= 0);
    const start = places.length > 0 ? Math.max(0, Math.min(...places) - kSnippetLength / 4) : 0;
    const part = section.text.slice(start, start + kSnippetLength);
    const anyWord = new RegExp(`(${words.map(word => word.replace(/\W/g, "\\$&")).join("|")})`, "i");
    const pieces = part.split(anyWord).map((piece, i) => (i % 2 === 1 ? element("mark", piece) : piece));
    return element("p", start > 0 ? "…" : "", ...pieces, start + kSnippetLength < section.text.length ? "…" : "");
}

function result(section, words) {
    const title = section.heading === section.page ? "" : section.page;
    const link = element("a", "", element("strong", section.heading), " ", element("small", title),
                         snippet(section, words));
    link.href = section.address;
    link.addEventListener("click", close);
    return element("li", "", link);
}

function show({found, words}) {
    const count = found.length === 1 ? "1 section" : `${found.length} sections`;
    const list = element("ol", "", ...found.slice(0, kMostResults).map(section => result(section, words)));
    results.replaceChildren(element("p", found.length > kMostResults ? `The best ${kMostResults} of ${count}` : count), list);
    results.hidden = false;
}

function close() {
    results.hidden = true;
}

function searchNow() {
    const query = field.value;
    if (query.trim() === "") return close();
    withSections(sections => {
        if (field.value === query) show(search(sections, query));
    });
}

/** Moves the focus among the field and the results. */
function move(step) {
    const stops = [field, ...results.querySelectorAll("a")];
    const next = stops[stops.indexOf(document.activeElement) + step];
    if (next) next.focus();
}

field.addEventListener("input", searchNow);
field.addEventListener("focus", searchNow);
box.addEventListener("submit", event => {
    event.preventDefault();
    results.querySelector("a")?.click();
});
box.addEventListener("keydown", event => {
    if (event.key === "ArrowDown") move(1);
    else if (event.key === "ArrowUp") move(-1);
    else if (event.key === "Escape") close();
    else return;
    event.preventDefault();
});
document.addEventListener("keydown", event => {
    const isTyping = /^(input|textarea|select)$/i.test(document.activeElement.tagName);
    if (event.key !== "/" || isTyping || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    field.focus();
});
document.addEventListener("click", event => {
    if (!box.contains(event.target)) close();
});

// A link can contain a search: index.html?search=lock
const asked = new URLSearchParams(location.search).get("search");
if (asked) {
    field.value = asked;
    searchNow();
}
