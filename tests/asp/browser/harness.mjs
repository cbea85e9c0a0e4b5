// What the browser suites share: `quorvex serve` on a free port, headless Chromium from Debian
// through puppeteer-core, and the tally of checks that decides the exit status.
import { spawn } from 'node:child_process';
import puppeteer from 'puppeteer-core';

let failures = 0;
let passes = 0;

export function check(what, actual, expected) {
  if (actual === expected) {
    passes++;
    return;
  }
  failures++;
  console.error(`FAIL ${what}: got ${JSON.stringify(actual)}, expected ${JSON.stringify(expected)}`);
}

// A failure that stopped the suite half way.
export function fail(error) {
  failures++;
  console.error(`FAIL ${error.stack || error}`);
}

// Prints the tally and ends the process with its verdict.
export function finish() {
  console.log(`${passes} passed, ${failures} failed`);
  process.exit(failures ? 1 : 0);
}

// Starts `quorvex serve site` with 2 workers (and `options`), and resolves with the child and
// its port once it says where it listens.
export function serve(quorvex, site, options = []) {
  const child = spawn(quorvex, ['serve', site, '--port', '0', '--workers', '2', ...options],
    { stdio: ['ignore', 'ignore', 'pipe'] });
  return new Promise((resolve, reject) => {
    let log = '';
    child.stderr.on('data', (chunk) => {
      log += chunk;
      const m = /http:\/\/127\.0\.0\.1:(\d+)\//.exec(log);
      if (m) resolve({ child, port: Number(m[1]) });
    });
    child.on('exit', (code) => reject(new Error(`quorvex serve exited with ${code}: ${log}`)));
  });
}

export function launch() {
  return puppeteer.launch({
    executablePath: process.env.CHROMIUM || '/usr/bin/chromium',
    headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'],
  });
}

export const text = (page, selector) => page.$eval(selector, (e) => e.textContent);
