// Renders a page of `fernwick-lab report` in headless Chromium: no console message, no request, no
// violation that axe-core finds, and no scrolling sideways, in light, dark and narrow; then takes
// screenshots, and prints the page with every list open.
//
// usage: node report_check.mjs PAGE DIRECTORY    packages are those of DIRECTORY/node_modules

import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [page, directory] = process.argv.slice(2).map((path) => resolve(path));
const require = createRequire(join(directory, "node_modules/"));
const { default: puppeteer } = await import(
  pathToFileURL(require.resolve("puppeteer-core")).href
);
const axe = readFileSync(require.resolve("axe-core/axe.min.js"), "utf8");

const looks = [
  { name: "top", width: 1000, scheme: "light" },
  { name: "light", width: 1200, scheme: "light" },
  { name: "dark", width: 1200, scheme: "dark" },
  { name: "narrow", width: 360, scheme: "light" },
  { name: "narrow-dark", width: 360, scheme: "dark" },
];

const faults = [];

async function check(browser, { name, width, scheme }) {
  const tab = await browser.newPage();
  tab.on("console", (message) => faults.push(`${name}: console: ${message.text()}`));
  tab.on("pageerror", (error) => faults.push(`${name}: ${error}`));
  tab.on("request", (request) => {
    if (request.url() !== pathToFileURL(page).href) faults.push(`${name}: loads ${request.url()}`);
  });
  await tab.setViewport({ width, height: 900 });
  await tab.emulateMediaFeatures([{ name: "prefers-color-scheme", value: scheme }]);
  await tab.goto(pathToFileURL(page).href);
  await tab.screenshot({ path: join(directory, `${name}.png`), fullPage: name !== "top" });
  const wide = await tab.evaluate(() => document.documentElement.scrollWidth - innerWidth);
  if (wide > 0) faults.push(`${name}: ${wide} pixels wider than the window`);
  await tab.evaluate(() => document.querySelectorAll("details").forEach((each) => (each.open = true)));
  await tab.evaluate(axe);
  const { violations } = await tab.evaluate(() => globalThis.axe.run());
  for (const { id, help, nodes } of violations) {
    faults.push(`${name}: ${id}: ${help}: ${nodes.map((node) => node.html).slice(0, 3).join(" ")}`);
  }
  await tab.close();
}

// On paper the lists are open though they are closed on the screen.
async function checkPaper(browser) {
  const tab = await browser.newPage();
  await tab.goto(pathToFileURL(page).href);
  await tab.evaluate(() => document.querySelectorAll("details").forEach((each) => (each.open = false)));
  await tab.emulateMediaType("print");
  const hidden = await tab.evaluate(
    () => [...document.querySelectorAll("details > :not(summary)")].filter((each) => !each.checkVisibility()).length,
  );
  if (hidden > 0) faults.push(`paper: ${hidden} lists are hidden`);
  await tab.pdf({ path: join(directory, "paper.pdf"), format: "A4", printBackground: true });
  await tab.screenshot({ path: join(directory, "paper.png"), fullPage: true });
  await tab.close();
}

const browser = await puppeteer.launch({
  executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
  args: ["--no-sandbox", "--force-color-profile=srgb"],
});
for (const look of looks) await check(browser, look);
await checkPaper(browser);
await browser.close();
for (const fault of faults) console.error(fault);
process.exit(faults.length === 0 ? 0 : 1);
