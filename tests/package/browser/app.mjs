// What every browser module of the package suite shares: the suite's arguments, the tally of
// checks, running quorvex, serving the generated application and driving its pages.
//
//   node browser_test.mjs <quorvex binary> <shared data folder> <artefact folder>
import { spawn, spawnSync } from 'node:child_process';
import { mkdirSync } from 'node:fs';
import { createRequire } from 'node:module';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

export const here = dirname(fileURLToPath(import.meta.url));
// One copy of puppeteer-core serves every browser suite: the one tests/asp/browser installs.
export const puppeteer = createRequire(join(here, '../../asp/browser/package.json'))('puppeteer-core');

export const [quorvex, shared, artefacts] = process.argv.slice(2).map((p) => resolve(p));
export const chromium = process.env.CHROMIUM || '/usr/bin/chromium';
export const dbDir = process.env.QV_DB_DIR || '/tmp/quorvex-db';
mkdirSync(artefacts, { recursive: true });

export const tally = { passes: 0, failures: 0 };

export function check(what, actual, expected) {
  if (JSON.stringify(actual) === JSON.stringify(expected)) {
    tally.passes++;
    return;
  }
  tally.failures++;
  console.error(`FAIL ${what}: got ${JSON.stringify(actual)}, expected ${JSON.stringify(expected)}`);
}

// Runs quorvex in the database's folder with a home of its own; throws with its words on failure.
export function run(dir, env, ...args) {
  const r = spawnSync(quorvex, ['--quiet', ...args], {
    cwd: dir,
    env: { ...process.env, HOME: join(dir, 'home'), XDG_CONFIG_HOME: '', ...env },
    encoding: 'utf8',
  });
  if (r.status !== 0) throw new Error(`quorvex ${args.join(' ')}: ${r.stderr}${r.stdout}`);
  return r.stdout;
}

// Starts the server and resolves with it and its address once it says where it listens.
export function serve(dir, env) {
  const child = spawn(quorvex, ['serve', join(dir, 'app'), '--port', '0', '--workers', '2', '--dev', '--no-access-log'], {
    env: { ...process.env, ...env },
    stdio: ['ignore', 'ignore', 'pipe'],
  });
  return new Promise((resolve, reject) => {
    let log = '';
    child.stderr.on('data', (chunk) => {
      log += chunk;
      const m = /http:\/\/127\.0\.0\.1:(\d+)\//.exec(log);
      if (m) resolve({ child, base: `http://127.0.0.1:${m[1]}/` });
    });
    child.on('exit', (code) => reject(new Error(`quorvex serve exited with ${code}: ${log}`)));
  });
}

// The film database of a test server (app_db.sh), the same on both.
function film(name, server, more = {}) {
  return {
    name,
    db: () => appDb(server),
    table: 'film',
    key: 'film_id',
    text: 'title',
    lookup: { field: 'genre_id', table: 'genre', key: 'genre_id', display: 'name', pick: 'Western' },
    date: 'released',
    number: 'price',
    required: 'title',
    rows: 23,
    ...more,
  };
}

// The three databases, and which table and fields the modules use on each.
export const databases = [
  {
    name: 'sqlite',
    db: () => `sqlite:${shared}/sqlite/chinook.sqlite`,
    table: 'Invoice',
    key: 'InvoiceId',
    text: 'BillingCity',
    lookup: { field: 'CustomerId', table: 'Customer', key: 'CustomerId', display: 'LastName', pick: 'Gruber' },
    date: 'InvoiceDate',
    number: 'Total',
    // Chinook's invoices need a total; the film tables need a title.
    required: 'Total',
    rows: 412,
  },
  film('postgresql', 'pg', { language: 'German' }),
  film('mariadb', 'maria'),
];

function appDb(kind) {
  const r = spawnSync(join(here, '..', 'app_db.sh'), [kind], { env: { ...process.env, QV_DB_DIR: dbDir }, encoding: 'utf8' });
  if (r.status !== 0) throw new Error(`app_db.sh ${kind}: ${r.stderr}`);
  return r.stdout.trim();
}

// A field's control: the form names it by the field's variable, "x_" and its name.
export const fieldId = (field) => `#qv_x_${field}`;
export const listRows = (page) => page.$$eval('table.qvGrid tbody tr', (rows) => rows.map((r) => r.textContent));
export const count = (page) => page.$eval('.qvPager .qvCount', (e) => e.textContent.trim());

export async function go(page, url) {
  const response = await page.goto(url, { waitUntil: 'domcontentloaded' });
  return response.status();
}

export async function submit(page, selector) {
  await Promise.all([page.waitForNavigation({ waitUntil: 'domcontentloaded' }), page.click(selector)]);
}

export async function search(page, base, listPage, text) {
  await go(page, base + listPage);
  await page.type('form.qvSearch input[name=q]', text);
  await submit(page, 'form.qvSearch button[type=submit]');
}

// Fills the add or edit form's fields of the cycle.
export async function fill(page, d, values) {
  for (const [field, value] of Object.entries(values)) {
    const sel = fieldId(field);
    if (field === d.lookup.field) {
      const option = await page.$$eval(`${sel} option`, (os, label) => (os.find((o) => o.textContent === label) || {}).value, value);
      await page.select(sel, option);
    } else {
      await page.$eval(sel, (e) => (e.value = ''));
      await page.type(sel, value);
    }
  }
}

// A new tab of the size the screenshots are taken at, collecting the page's script errors.
export async function newPage(browser) {
  const page = await browser.newPage();
  await page.setViewport({ width: 1100, height: 800 });
  page.qvErrors = [];
  page.on('pageerror', (e) => page.qvErrors.push(e.message));
  return page;
}
