// Adds a copy button to each sample. From a shell session it copies only the commands.
"use strict";

const kShownFor = 1500; // milliseconds that the button tells what happened

function textOf(sample) {
    if (sample.dataset.copy !== undefined) return sample.dataset.copy;
    const lines = [...sample.querySelectorAll(".line")].map(line => line.textContent.trimEnd());
    return lines.length > 0 ? lines.join("\n") : sample.textContent;
}

/** Copies the text; where the browser does not allow that, it selects the sample. */
async function copy(sample, button) {
    try {
        await navigator.clipboard.writeText(textOf(sample));
        button.textContent = "Copied";
    } catch {
        getSelection().selectAllChildren(sample);
        button.textContent = "Selected";
    }
    setTimeout(() => { button.textContent = "Copy"; }, kShownFor);
}

for (const sample of document.querySelectorAll(".contents .fragment")) {
    if (sample.querySelector(".lineno")) continue; // a whole source file
    const button = document.createElement("button");
    button.type = "button";
    button.className = "copy";
    button.textContent = "Copy";
    button.addEventListener("click", () => copy(sample, button));
    const box = document.createElement("div");
    box.className = "sample";
    sample.replaceWith(box);
    box.append(sample, button);
}
