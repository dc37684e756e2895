// The site as it was built, behind a plain web server, and a browser to look at it with.
import { createRequire } from "node:module";
import { createServer } from "node:http";
import { existsSync, readFileSync, readdirSync, statSync } from "node:fs";
import path from "node:path";

export const root = path.dirname(path.dirname(import.meta.dirname ?? path.dirname(new URL(import.meta.url).pathname)));
export const site = path.join(root, "build/site");
export const canRun = existsSync(path.join(site, "run/runner.js"));
// What runs programs is built by a preset; where there is that preset, it has to be there.
export const mustRun = /"name": "wasm"/.test(readFileSync(path.join(root, "CMakePresets.json"), "utf8"));

export const pageNames = readdirSync(site).filter((name) => name.endsWith(".html") && name !== "404.html");

const types = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".svg": "image/svg+xml",
  ".json": "application/json", ".wasm": "application/wasm", ".png": "image/png", ".txt": "text/plain" };

// Below this path, as where a host has a folder for each project; beside it there is nothing.
const below = "/qtx/";

async function serve() {
  const server = createServer((request, response) => {
    const asked = decodeURIComponent(new URL(request.url, "http://site").pathname);
    const file = path.join(site, asked.slice(below.length));
    if (!asked.startsWith(below) || !file.startsWith(site) || !existsSync(file) || !statSync(file).isFile()) {
      response.writeHead(404, { "content-type": "text/html" }).end(readFileSync(path.join(site, "404.html")));
      return;
    }
    response.writeHead(200, { "content-type": types[path.extname(file)] ?? "application/octet-stream" });
    response.end(readFileSync(file));
  });
  await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
  return server;
}

export class Browser {
  static async start() {
    const require = createRequire(path.join(root, "build/site-tools/"));
    const { chromium } = require("playwright-core");
    const made = new Browser();
    made.server = await serve();
    made.address = `http://127.0.0.1:${made.server.address().port}${below}`;
    made.browser = await chromium.launch({
      executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
      args: process.getuid() === 0 ? ["--no-sandbox"] : [],
    });
    return made;
  }

  // A page whose requests and errors are on record.
  async open(name, options = {}) {
    const context = await this.browser.newContext({ permissions: ["clipboard-read", "clipboard-write"], ...options });
    const page = await context.newPage();
    page.requested = [];
    page.errors = [];
    page.on("request", (request) => page.requested.push(request.url()));
    page.on("pageerror", (error) => page.errors.push(error.message));
    page.on("console", (message) => message.type() === "error" && page.errors.push(message.text()));
    await page.goto(this.address + name);
    await page.waitForFunction(() => ![...document.querySelectorAll("pre > code.language-basic")].length);
    return page;
  }

  async stop() {
    await this.browser.close();
    this.server.close();
    this.server.closeAllConnections?.();
  }
}

// The programs of a page of docs/ with what they print, as its text has them.
export function documented(file) {
  const programs = [];
  let language = null, block = "", follows = false;
  for (const line of readFileSync(file, "utf8").split("\n")) {
    if (!line.startsWith("```")) {
      if (language !== null) block += line + "\n";
      else if (line !== "") follows = false;
    } else if (language === null) {
      [language, block] = [line.slice(3), ""];
    } else {
      if (language === "basic") programs.push({ program: block, output: null });
      if (language === "text" && follows) programs.at(-1).output = block;
      follows = language === "basic";
      language = null;
    }
  }
  return programs;
}

// What a program view shows: all its text, the source of pictures included, in the order in which it was printed.
export function shownOutput(view) {
  return view.locator(".qtx-output").evaluate((output) =>
    [...output.children].map((part) => {
      if (part.matches(".qtx-printed")) return part.textContent;
      return part.matches("details") ? part.querySelector("pre").textContent + "\n" : "";
    }).join(""));
}

// Presses Run and waits for the end; the status that stands there then.
export async function run(view, milliseconds = 60000) {
  await view.getByRole("button", { name: "Run", exact: true }).click();
  return ended(view, milliseconds);
}

export async function ended(view, milliseconds = 60000) {
  const status = await view.locator(".qtx-status").elementHandle();
  await view.page().waitForFunction((each) => !/^(Running|)$|^Running/.test(each.textContent), status, { timeout: milliseconds });
  return status.textContent();
}

// Puts a program into a view as somebody would who types it.
export async function enter(view, program) {
  await view.getByRole("textbox", { name: "Program" }).fill(program);
}
