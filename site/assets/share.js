// Programs as text that an address can hold behind its '#', which no server gets to see.

async function through(stream, bytes) {
  return new Uint8Array(await new Response(new Blob([bytes]).stream().pipeThrough(stream)).arrayBuffer());
}

// Compressed where the browser can do that, which the first letter tells.
export async function packed(program) {
  let bytes = new TextEncoder().encode(program);
  let how = "p";
  if (globalThis.CompressionStream) {
    bytes = await through(new CompressionStream("deflate-raw"), bytes);
    how = "z";
  }
  const text = btoa(Array.from(bytes, (byte) => String.fromCharCode(byte)).join(""));
  return how + text.replaceAll("+", "-").replaceAll("/", "_").replaceAll("=", "");
}

// Rejects what is no program.
export async function unpacked(text) {
  const letters = atob(text.slice(1).replaceAll("-", "+").replaceAll("_", "/"));
  let bytes = Uint8Array.from(letters, (letter) => letter.charCodeAt(0));
  if (text[0] === "z") bytes = await through(new DecompressionStream("deflate-raw"), bytes);
  return new TextDecoder("utf-8", { fatal: true }).decode(bytes);
}

export async function linkTo(program) {
  const page = new URL("../playground.html", import.meta.url);
  page.hash = "program=" + (await packed(program));
  return page.href;
}
