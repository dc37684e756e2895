// Makes each program on a page one that can be run, together with what it prints.
import { highlighted } from "./highlight.js";
import { ProgramView } from "./program_view.js";

function codeOf(pre, language) {
  return pre?.matches("pre") ? pre.querySelector(`:scope > code.language-${language}`) : null;
}

for (const code of document.querySelectorAll("pre > code.language-basic")) {
  const pre = code.parentElement;
  const printed = codeOf(pre.nextElementSibling, "text");
  const view = new ProgramView({
    program: code.textContent.replace(/\n$/, ""),
    documented: printed ? printed.textContent : null,
  });
  printed?.parentElement.remove();
  pre.replaceWith(view.element);
}
for (const code of document.querySelectorAll("pre > code.language-declarations")) {
  code.replaceChildren(...highlighted(code.textContent.replace(/\n$/, "")));
}
