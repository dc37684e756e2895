// The site in a browser: every program is run, and what a reader may do is done.
import assert from "node:assert/strict";
import { existsSync, readFileSync, readdirSync } from "node:fs";
import path from "node:path";
import { after, before, test } from "node:test";

import { Browser, canRun, documented, ended, enter, mustRun, pageNames, root, run, shownOutput } from "./browser.mjs";

let browser;
before(async () => (browser = await Browser.start()));
after(() => browser?.stop());

const skip = !canRun && "this build has nothing that runs programs";
test("programs can be run", { skip: !mustRun && skip }, () => assert.ok(canRun));

async function withPage(name, options, action) {
  const page = await browser.open(name, options);
  try {
    await action(page);
    assert.deepEqual(page.errors, []);
  } finally {
    await page.context().close();
  }
}

const viewsOf = (page) => page.locator(".qtx-program");
const buttonOf = (view, name) => view.getByRole("button", { name, exact: true });

for (const name of pageNames) {
  test(`${name} loads nothing from elsewhere, and what runs programs not at once`, () =>
    withPage(name, {}, async (page) => {
      await page.waitForLoadState("networkidle");
      const elsewhere = page.requested.filter((url) => !url.startsWith(browser.address) && !/^(data|blob):/.test(url));
      assert.deepEqual(elsewhere, []);
      assert.deepEqual(page.requested.filter((url) => url.includes("/run/")), []);
    }));

  for (const width of [320, 390]) {
    test(`${name} fits a screen of ${width} pixels`, () =>
      withPage(name, { viewport: { width, height: 700 } }, async (page) => {
        const wide = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(wide <= width, `it is ${wide} pixels wide`);
      }));
  }
}

// The documentation: each program, in the page.
let documentedPrograms = 0;
for (const file of [...readdirSync(path.join(root, "docs")).map((name) => `docs/${name}`), "README.md"]) {
  if (!file.endsWith(".md")) continue;
  const programs = documented(path.join(root, file));
  documentedPrograms += programs.length;
  if (programs.length === 0) continue;
  const name = file === "README.md" ? "index.html" : path.basename(file).replace(/md$/, "html");
  test(`the programs of ${file}`, { skip }, () =>
    withPage(name, {}, async (page) => {
      const views = viewsOf(page);
      assert.equal(await views.count(), programs.length);
      for (const [i, { program, output }] of programs.entries()) {
        const view = views.nth(i);
        assert.equal((await view.getByRole("textbox", { name: "Program" }).inputValue()) + "\n", program);
        if (output !== null) assert.equal(await shownOutput(view), output);
        const status = await run(view);
        assert.equal(status, output === null ? "Ended" : "Ended; it printed what stood here", program);
        if (output !== null) assert.equal(await shownOutput(view), output);
      }
    }));
}
test("there are programs on the pages", () => assert.ok(documentedPrograms > 100, `${documentedPrograms}`));

for (const file of readdirSync(path.join(root, "examples"))) {
  const name = path.basename(file, ".bas");
  test(`the example ${name}`, { skip }, () =>
    withPage("playground.html", {}, async (page) => {
      await page.getByLabel("Begin with").selectOption(name);
      const view = viewsOf(page);
      const text = readFileSync(path.join(root, "examples", file), "utf8");
      await page.waitForFunction((wanted) => document.querySelector("textarea").value === wanted, text);
      const expected = path.join(root, text.match(/^' prints: (.*)/)?.[1] ?? `tests/examples/${name}.out`);
      const known = existsSync(expected);
      assert.equal(await run(view, 200000), known ? "Ended; it printed what stood here" : "Ended");
      const printed = await shownOutput(view);
      if (known) assert.equal(printed, readFileSync(expected, "utf8"));
      const pictures = await view.locator("img.qtx-picture").evaluateAll((images) =>
        Promise.all(images.map((image) => image.decode().then(() => image.naturalWidth))));
      assert.equal(pictures.length, printed.split("<svg").length - 1);
      assert.ok(pictures.every((width) => width > 100));
    }));
}

// Endless ones: the page goes on, and Stop ends them.
async function isResponsive(page) {
  const began = Date.now();
  await page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve))));
  return Date.now() - began < 2000;
}
for (const [what, program] of [
  ["computes", "Dim n As Integer\nDo\n  n = n + 1\nLoop"],
  ["waits", "Thread.Sleep(100000000)"],
]) {
  test(`a program that ${what} without an end is stopped`, { skip }, () =>
    withPage("playground.html", {}, async (page) => {
      const view = viewsOf(page);
      await enter(view, `Print "before"\n${program}`);
      await buttonOf(view, "Run").click();
      await view.locator(".qtx-printed").first().waitFor();
      assert.equal(await shownOutput(view), "before\n");
      assert.ok(await isResponsive(page));
      await buttonOf(view, "Stop").click();
      assert.equal(await ended(view), "Stopped");
      assert.ok(await buttonOf(view, "Stop").isHidden());
      await enter(view, 'Print "after"');
      assert.equal(await run(view), "Ended");
      assert.equal(await shownOutput(view), "after\n");
    }));
}
test("a program that prints without an end is stopped by itself", { skip }, () =>
  withPage("playground.html", {}, async (page) => {
    const view = viewsOf(page);
    await enter(view, 'Do\n  Print "on and on"\nLoop');
    await buttonOf(view, "Run").click();
    await view.locator(".qtx-printed").first().waitFor();
    assert.ok(await isResponsive(page));
    assert.match(await ended(view), /^Stopped: it prints more/);
    assert.ok(await isResponsive(page));
  }));

test("what is printed appears before the program has ended", { skip }, () =>
  withPage("playground.html", {}, async (page) => {
    const view = viewsOf(page);
    await enter(view, 'Print "one"\nThread.Sleep(3000)\nPrint "two"');
    await buttonOf(view, "Run").click();
    await view.locator(".qtx-printed").first().waitFor();
    assert.equal(await shownOutput(view), "one\n");
    assert.equal(await ended(view), "Ended");
    assert.equal(await shownOutput(view), "one\ntwo\n");
  }));

test("an error of the program marks its line and leads to it", { skip }, () =>
  withPage("playground.html", {}, async (page) => {
    const view = viewsOf(page);
    await enter(view, 'Print "one"\nPrint FaQTX(5)\nPrint "three"\n');
    assert.equal(await run(view), "Ended with status 1");
    assert.equal(await shownOutput(view), "");
    assert.match(await view.locator(".qtx-message").first().textContent(), /unknown name 'FaQTX'; did you mean 'FacQTX'\?/);
    assert.deepEqual(await view.locator(".qtx-wrong").allTextContents(), ["Print FaQTX(5)\n"]);
    await buttonOf(view, "line 2").click();
    const text = view.getByRole("textbox", { name: "Program" });
    assert.equal(await text.evaluate((each) => each.value.slice(each.selectionStart, each.selectionEnd)), "Print FaQTX(5)");
    await enter(view, "Print FacQTX(5)");
    assert.equal(await view.locator(".qtx-wrong").count(), 0);
    assert.equal(await run(view), "Ended");
    assert.equal(await shownOutput(view), "120\n");
  }));

test("a warning is told from an error, and the program runs", { skip }, () =>
  withPage("playground.html", {}, async (page) => {
    const view = viewsOf(page);
    await enter(view, 'Dim b As Byte = 300\nSystem.DebugLog("noted")\nPrint b\nRaise New RuntimeException("over")\n');
    assert.equal(await run(view), "Ended with status 1");
    assert.equal(await shownOutput(view), "44\n");
    const told = await view.locator(".qtx-output").textContent();
    assert.match(told, /warning: 300[^]*noted[^]*44[^]*over/);
    const messages = view.locator(".qtx-message");
    assert.deepEqual(await messages.evaluateAll((all) => all.map((each) => each.className.split(" ")[1])),
      ["qtx-warning", "qtx-log", "qtx-error"]);
    assert.match(await messages.nth(0).textContent(), /warning: 300 does not fit in UInt8/);
    assert.deepEqual(await view.locator(".qtx-doubtful").allTextContents(), ["Dim b As Byte = 300\n"]);
    assert.deepEqual(await view.locator(".qtx-wrong").allTextContents(), ['Raise New RuntimeException("over")\n']);
    const colours = await messages.evaluateAll((all) => all.map((each) => getComputedStyle(each).borderLeftColor));
    assert.equal(new Set(colours).size, 3, colours.join(" "));
    await enter(view, "Print 1");
    assert.equal(await run(view), "Ended");
    assert.equal(await view.locator(".qtx-doubtful, .qtx-wrong, .qtx-message").count(), 0);
  }));

test("an exception that nothing catches marks its line, behind what was printed", { skip }, () =>
  withPage("playground.html", {}, async (page) => {
    const view = viewsOf(page);
    await enter(view, 'Print "first"\nRaise New UnsupportedOperationException("not today")\n');
    assert.equal(await run(view), "Ended with status 1");
    assert.equal(await shownOutput(view), "first\n");
    assert.match(await view.locator(".qtx-output").textContent(), /not today/);
    assert.deepEqual(await view.locator(".qtx-wrong").allTextContents(),
      ['Raise New UnsupportedOperationException("not today")\n']);
  }));

test("a program can be changed, and brought back", () =>
  withPage("queue.html", {}, async (page) => {
    const view = viewsOf(page).first();
    const text = view.getByRole("textbox", { name: "Program" });
    const [program, output] = [await text.inputValue(), await shownOutput(view)];
    assert.ok(await buttonOf(view, "Reset").isHidden());
    await enter(view, 'Print "changed"');
    await buttonOf(view, "Reset").click();
    assert.equal(await text.inputValue(), program);
    assert.equal(await shownOutput(view), output);
    assert.ok(await buttonOf(view, "Reset").isHidden());
  }));

test("pictures of measured times lie on white, also where the page is dark", () =>
  withPage("performance.html", { colorScheme: "dark" }, async (page) => {
    const behind = await page.locator("article img").evaluateAll((all) =>
      all.map((each) => getComputedStyle(each).backgroundColor));
    assert.ok(behind.length >= 4);
    assert.deepEqual([...new Set(behind)], ["rgb(255, 255, 255)"]);
  }));

test("a shared program comes back from its link", () =>
  withPage("spline.html", {}, async (page) => {
    const view = viewsOf(page).first();
    const program = 'Print "né 数 𝄞"\n\n  \' indented, 100 % <b>&amp;</b>\nPrint "ends without a line"';
    await enter(view, program);
    await buttonOf(view, "Share").click();
    await view.locator(".qtx-link").waitFor();
    const link = await view.locator(".qtx-link").inputValue();
    assert.equal(await page.evaluate(() => navigator.clipboard.readText()), link);
    assert.ok(link.startsWith(browser.address + "playground.html#program="));
    await withPage(link.slice(browser.address.length), {}, async (other) => {
      await other.waitForFunction((wanted) => document.querySelector("textarea")?.value === wanted, program);
      if (canRun) {
        assert.equal(await run(viewsOf(other)), "Ended");
        assert.equal(await shownOutput(viewsOf(other)), "né 数 𝄞\nends without a line\n");
      }
    });
    await withPage("playground.html#program=z!!!", {}, async (other) => {
      await other.getByText("The address holds no program").waitFor();
    });
  }));

test("a program is run and stopped by the keyboard alone", { skip }, () =>
  withPage("queue.html", {}, async (page) => {
    const view = viewsOf(page).first();
    const isFocused = (locator) => locator.evaluate((each) => each === document.activeElement);
    const reach = async (locator) => {
      for (let i = 0; i < 150; ++i) {
        if (await isFocused(locator)) return;
        await page.keyboard.press("Tab");
      }
      assert.fail("it is not reached");
    };
    const text = view.getByRole("textbox", { name: "Program" });
    await reach(text);
    await page.keyboard.press("Control+A");
    await page.keyboard.type('While True\n  Dim a As Integer\nWend');
    // A line begins where the one before it does.
    assert.equal(await text.inputValue(), "While True\n  Dim a As Integer\n  Wend");
    await page.keyboard.press("Control+Enter");
    await reach(buttonOf(view, "Stop"));
    await page.keyboard.press("Enter");
    assert.equal(await ended(view), "Stopped");
    assert.ok(await isFocused(buttonOf(view, "Run")));
    await page.keyboard.press("Tab");
    assert.ok(await isFocused(buttonOf(view, "Reset")));
    await page.keyboard.press("Enter");
    await reach(buttonOf(view, "Share"));
    await page.keyboard.press("Shift+Tab");
    assert.ok(await isFocused(buttonOf(view, "Run")));
    await page.keyboard.press("Space");
    assert.equal(await ended(view), "Ended; it printed what stood here");
  }));

test("Run is within reach on a narrow screen", { skip }, () =>
  withPage("functions.html", { viewport: { width: 320, height: 600 }, hasTouch: true, isMobile: true }, async (page) => {
    const view = viewsOf(page).first();
    await buttonOf(view, "Run").tap();
    assert.equal(await ended(view), "Ended; it printed what stood here");
    for (const name of ["Run", "Share"]) {
      const box = await buttonOf(view, name).boundingBox();
      assert.ok(box.x >= 0 && box.x + box.width <= 320 && box.height >= 24, name);
    }
  }));

test("the search finds a name and leads to it", () =>
  withPage("index.html", {}, async (page) => {
    await page.getByRole("textbox", { name: "Search" }).click();
    await page.keyboard.type("BitwiseRotateQTX");
    await page.locator(".md-search-result__link").first().waitFor();
    const links = await page.locator(".md-search-result__link").evaluateAll((all) => all.map((each) => each.href));
    assert.ok(links.some((link) => /functions\.html(\?[^#]*)?#bitwiserotateqtx$/.test(link)), links.join("\n"));
  }));

test("an address that leads nowhere leads back", async () => {
  const page = await browser.open("nowhere.html");
  await page.getByRole("link", { name: "start" }).click();
  await page.waitForURL(browser.address + "index.html");
  await page.context().close();
});

test("the index of names leads to each of them", () =>
  withPage("names.html", {}, async (page) => {
    const registered = readFileSync(path.join(root, "tests/registered.txt"), "utf8");
    const names = await page.locator("td:first-child a").allTextContents();
    const functions = [...registered.matchAll(/^ {2}(\w+QTX)\(/gm)].map(([, name]) => name);
    assert.ok(functions.length > 60);
    for (const name of functions) assert.ok(names.includes(name), name);
  }));

for (const scheme of ["light", "dark"]) {
  test(`colours are ${scheme} where the system's are`, () =>
    withPage("spline.html", { colorScheme: scheme }, async (page) => {
      const lightness = await page.evaluate(() => {
        const [r, g, b] = getComputedStyle(document.body).backgroundColor.match(/\d+/g).map(Number);
        return (r + g + b) / 3;
      });
      assert.equal(lightness > 128, scheme === "light");
      assert.equal(await page.evaluate(() => getComputedStyle(document.querySelector("article img")).colorScheme), scheme);
    }));
}
