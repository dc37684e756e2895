// The playground: a program from the address or one of the examples.
import { ProgramView } from "./program_view.js";
import { unpacked } from "./share.js";

const examples = await (await fetch(new URL("examples.json", import.meta.url))).json();
const place = document.getElementById("qtx-playground");

const view = new ProgramView({
  program: "",
  onShared: (link) => history.replaceState(null, "", new URL(link).hash),
});
const choice = document.createElement("select");
choice.append(new Option("an example …", ""), ...examples.map((each) => new Option(each.name, each.name)));
choice.onchange = () => {
  if (choice.value) location.hash = `example=${choice.value}`;
};
const label = document.createElement("label");
label.className = "qtx-choice";
label.append("Begin with ", choice);
const about = document.createElement("p");
place.append(label, about, view.element);

function showExample(name) {
  const example = examples.find((each) => each.name === name);
  if (!example) return false;
  choice.value = name;
  about.textContent = example.about;
  view.show(example.program, example.output);
  return true;
}

// Whether the address says which program.
async function showAddressed() {
  const [, what, which] = location.hash.match(/^#(example|program)=(.*)$/) ?? [];
  if (what === "example") return showExample(which);
  if (what !== "program") return false;
  choice.value = "";
  try {
    const program = await unpacked(which);
    about.textContent = "";
    if (view.program !== program) view.show(program, null);
  } catch {
    about.textContent = "The address holds no program: perhaps it is not whole.";
  }
  return true;
}

window.onhashchange = async () => {
  if (await showAddressed()) place.scrollIntoView({ block: "nearest" });
};
if (!(await showAddressed())) showExample("tour");
