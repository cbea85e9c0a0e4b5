// The generated application in a real browser: the default package generated from Chinook
// (SQLite) and from a small film database on the PostgreSQL and MariaDB test servers, each
// served by `quorvex serve`, driven by Debian's headless Chromium through puppeteer-core. On
// each: the list pages forward and sorts, the quick search finds, a record is added with a
// lookup and a date, edited, copied, refused with a message beside the field, deleted, and
// several are deleted at once. On Chinook, a custom view and a report with two group levels,
// aggregates and a grand total are checked against the data, and every input of the Invoice
// pages is tried with SQL and script injections. PostgreSQL runs in German. Screenshots of the
// list, edit and report pages are kept as artefacts.
//
//   node browser_test.mjs <quorvex binary> <shared data folder> <artefact folder>
// QV_DB_DIR names the test servers' folder (scripts/db/start.sh); a server that is down is
// reported and skipped.
import { spawn, spawnSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
// One copy of puppeteer-core serves every browser suite: the one tests/asp/browser installs.
const puppeteer = createRequire(join(here, '../asp/browser/package.json'))('puppeteer-core');

const [quorvex, shared, artefacts] = process.argv.slice(2).map((p) => resolve(p));
const chromium = process.env.CHROMIUM || '/usr/bin/chromium';
const dbDir = process.env.QV_DB_DIR || '/tmp/quorvex-db';
const work = mkdtempSync(join(tmpdir(), 'qv-app-browser-'));
mkdirSync(artefacts, { recursive: true });
let failures = 0;
let passes = 0;

function check(what, actual, expected) {
  if (JSON.stringify(actual) === JSON.stringify(expected)) {
    passes++;
    return;
  }
  failures++;
  console.error(`FAIL ${what}: got ${JSON.stringify(actual)}, expected ${JSON.stringify(expected)}`);
}

// Runs quorvex in the database's folder with a home of its own; throws with its words on failure.
function run(dir, env, ...args) {
  const r = spawnSync(quorvex, ['--quiet', ...args], {
    cwd: dir,
    env: { ...process.env, HOME: join(dir, 'home'), XDG_CONFIG_HOME: '', ...env },
    encoding: 'utf8',
  });
  if (r.status !== 0) throw new Error(`quorvex ${args.join(' ')}: ${r.stderr}${r.stdout}`);
  return r.stdout;
}

// Starts the server and resolves with it and its address once it says where it listens.
function serve(dir, env) {
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

// The three databases: how to make each project, and which table and fields the cycle uses.
const databases = [
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
    extra: [
      ['customview', 'app.qvp', 'BigInvoices', '--sql', 'SELECT InvoiceId, BillingCountry, Total FROM Invoice WHERE Total > 10;'],
      ['report', 'app.qvp', 'Sales', '--from', 'Invoice'],
      // Tables added to a loaded project start from zero paging and sorting settings.
      ['set', 'app.qvp', '--table', 'BigInvoices', 'TblSortType=1', 'TblRecPerPage=20'],
      ['set', 'app.qvp', '--table', 'Sales', 'TblRptShowGrandTotal=True', 'TblRptShowDetails=True', 'TblRptIndent=2'],
      ['set', 'app.qvp', '--table', 'Sales', '--field', 'BillingCountry', 'FldGroupBy=1', 'FldGroupByShowSummary=True'],
      ['set', 'app.qvp', '--table', 'Sales', '--field', 'BillingCity', 'FldGroupBy=2'],
      ['set', 'app.qvp', '--table', 'Sales', '--field', 'Total', 'FldRptAggSum=True', 'FldRptAggMax=True'],
    ],
  },
  {
    name: 'postgresql',
    db: () => appDb('pg'),
    table: 'film',
    key: 'film_id',
    text: 'title',
    lookup: { field: 'genre_id', table: 'genre', key: 'genre_id', display: 'name', pick: 'Western' },
    date: 'released',
    number: 'price',
    required: 'title',
    rows: 23,
    language: 'German',
  },
  {
    name: 'mariadb',
    db: () => appDb('maria'),
    table: 'film',
    key: 'film_id',
    text: 'title',
    lookup: { field: 'genre_id', table: 'genre', key: 'genre_id', display: 'name', pick: 'Western' },
    date: 'released',
    number: 'price',
    required: 'title',
    rows: 23,
  },
];

function appDb(kind) {
  const r = spawnSync(join(here, 'app_db.sh'), [kind], { env: { ...process.env, QV_DB_DIR: dbDir }, encoding: 'utf8' });
  if (r.status !== 0) throw new Error(`app_db.sh ${kind}: ${r.stderr}`);
  return r.stdout.trim();
}

// A project of the database with the cycle's settings, generated into <dir>/app.
function generate(d, dir, env, source) {
  run(dir, env, 'new', 'app.qvp', '--db', source);
  const t = ['set', 'app.qvp', '--table', d.table];
  run(dir, env, ...t, 'TblRecPerPage=10', 'TblMultiDelete=True', 'TblCopy=True', 'TblSrchType=BASIC');
  run(dir, env, ...t, '--field', d.text, 'FldBasicSearch=True');
  run(dir, env, ...t, '--field', d.required, 'FldRequired=True');
  run(dir, env, ...t, '--field', d.lookup.field, 'FldHtmlTag=SELECT', `FldTagLnkTbl=${d.lookup.table}`,
    `FldTagLnkFld=${d.lookup.key}`, `FldTagLnkDisplay=${d.lookup.display}`);
  for (const args of d.extra || []) run(dir, env, ...args);
  const language = d.language ? ['--language', d.language] : [];
  run(dir, env, 'generate', 'app.qvp', '--dest', 'app', '--overwrite', 'all', '--refresh-template', ...language);
}

// A field's control: the form names it by the field's variable, "x_" and its name.
const fieldId = (field) => `#qv_x_${field}`;
const listRows = (page) => page.$$eval('table.qvGrid tbody tr', (rows) => rows.map((r) => r.textContent));
const count = (page) => page.$eval('.qvPager .qvCount', (e) => e.textContent.trim());

async function go(page, url) {
  const response = await page.goto(url, { waitUntil: 'domcontentloaded' });
  return response.status();
}

async function submit(page, selector) {
  await Promise.all([page.waitForNavigation({ waitUntil: 'domcontentloaded' }), page.click(selector)]);
}

async function search(page, base, listPage, text) {
  await go(page, base + listPage);
  await page.type('form.qvSearch input[name=q]', text);
  await submit(page, 'form.qvSearch button[type=submit]');
}

// Fills the add or edit form's fields of the cycle.
async function fill(page, d, values) {
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

// The list, add, edit, copy, validation and delete cycle on one database.
async function cycle(browser, d, base) {
  const page = await browser.newPage();
  await page.setViewport({ width: 1100, height: 800 });
  const errors = [];
  page.on('pageerror', (e) => errors.push(e.message));
  const listPage = `${d.table}list.asp`;
  const label = (what) => `${d.name}: ${what}`;

  // Paging: ten rows, then the next ten; the count says where we are.
  check(label('list answers'), await go(page, base + listPage), 200);
  const first = await listRows(page);
  check(label('rows on the first page'), first.length, 10);
  check(label('count'), (await count(page)).includes(String(d.rows)), true);
  await submit(page, '.qvPager a[rel=next]');
  const second = await listRows(page);
  check(label('rows on the second page'), second.length, 10);
  check(label('second page differs'), second[0] !== first[0], true);
  await page.screenshot({ path: join(artefacts, `${d.name}-list.png`), fullPage: true });

  // Sorting by the text column, up and then down.
  const sortLink = `table.qvGrid thead th a[href*="order="][href*="${d.text}&"]`;
  const column = async () => {
    const caption = await page.$eval(sortLink, (a) => a.firstChild.textContent.trim());
    return page.$$eval(`table.qvGrid tbody td[data-label="${caption}"]`, (tds) => tds.map((td) => td.textContent));
  };
  await go(page, base + listPage);
  await submit(page, sortLink);
  const up = await column();
  check(label('a sorted page'), up.length, 10);
  check(label('sorted ascending'), up, [...up].sort((a, b) => (a < b ? -1 : a > b ? 1 : 0)));
  await submit(page, sortLink);
  const down = await column();
  check(label('sorted descending'), down, [...down].sort((a, b) => (a < b ? 1 : a > b ? -1 : 0)));
  check(label('descending starts elsewhere'), down[0] !== up[0], true);

  // Quick search.
  const needle = d.name === 'sqlite' ? 'Oslo' : 'Film 07';
  await search(page, base, listPage, needle);
  const found = await listRows(page);
  check(label('search finds'), found.length > 0 && found.every((r) => r.includes(needle)), true);

  // Adding with a lookup and a date.
  const mark = `Quorvex Zürich ${d.name}`;
  await go(page, base + listPage);
  await submit(page, '.qvTitleBar a.qvPrimary');
  const values = { [d.text]: mark, [d.lookup.field]: d.lookup.pick, [d.date]: '2024-02-29', [d.number]: '12.5' };
  await fill(page, d, values);
  await submit(page, 'form.qvForm button[type=submit]');
  check(label('added, back on the list'), new URL(page.url()).pathname, `/${listPage}`);
  await search(page, base, listPage, mark);
  let rows = await listRows(page);
  check(label('the new record'), rows.length, 1);
  check(label('the lookup shows its display'), (rows[0] || '').includes(d.lookup.pick), true);
  check(label('the date'), (rows[0] || '').includes('2024'), true);

  // Editing: the form shows the record; a changed number is saved.
  await submit(page, 'table.qvGrid tbody tr td.qvActions a[href*="edit.asp"]');
  check(label('edit form holds the text'), await page.$eval(fieldId(d.text), (e) => e.value), mark);
  await page.screenshot({ path: join(artefacts, `${d.name}-edit.png`), fullPage: true });
  await fill(page, d, { [d.number]: '99.25' });
  await submit(page, 'form.qvForm button[type=submit]');
  await search(page, base, listPage, mark);
  rows = await listRows(page);
  // Until the engine formats by locale, German shows "99.25" too.
  check(label('edited'), /99[.,]25/.test(rows[0] || ''), true);

  // A failed check on the server: the browser's own checks are skipped by submitting the form
  // directly; the page comes back with the typed text and a message beside the field.
  await submit(page, 'table.qvGrid tbody tr td.qvActions a[href*="edit.asp"]');
  await page.$eval(fieldId(d.required), (e) => (e.value = ''));
  await page.$eval(fieldId(d.date), (e) => (e.value = 'not a date'));
  await Promise.all([page.waitForNavigation(), page.$eval('form.qvForm', (f) => HTMLFormElement.prototype.submit.call(f))]);
  const message = async (field) => page.$eval(fieldId(field), (e) => e.closest('.qvField').querySelector('.qvFieldError').textContent);
  check(label('required message'), (await message(d.required)).length > 0, true);
  check(label('date message'), (await message(d.date)).length > 0, true);
  check(label('typed text kept'), await page.$eval(fieldId(d.date), (e) => e.value), 'not a date');
  // The browser's checks stop the same form before it leaves.
  await page.click('form.qvForm button[type=submit]');
  await new Promise((r) => setTimeout(r, 100));
  check(label('browser check keeps the page'), new URL(page.url()).pathname.endsWith('edit.asp'), true);
  await page.screenshot({ path: join(artefacts, `${d.name}-edit-errors.png`), fullPage: true });

  // Copying twice, then deleting one copy and then two records at once.
  for (const suffix of [' copy', ' copy 2']) {
    await search(page, base, listPage, mark);
    await submit(page, 'table.qvGrid tbody tr td.qvActions a[href*="copy="]');
    check(label('copy form starts from the record'), await page.$eval(fieldId(d.text), (e) => e.value), mark);
    await fill(page, d, { [d.text]: mark + suffix });
    await submit(page, 'form.qvForm button[type=submit]');
  }
  await search(page, base, listPage, mark);
  check(label('three records'), (await listRows(page)).length, 3);
  await go(page, base + listPage + `?q=${encodeURIComponent(mark + ' copy 2')}`);
  await submit(page, 'table.qvGrid tbody tr td.qvActions a[href*="delete.asp"]');
  await submit(page, 'form.qvForm button.qvDanger');
  await search(page, base, listPage, mark);
  check(label('one deleted'), (await listRows(page)).length, 2);
  await page.click('table.qvGrid thead input.qvCheckAll');
  const boxes = await page.$$eval('table.qvGrid tbody input[name=key]', (bs) => bs.filter((b) => b.checked).length);
  check(label('select all'), boxes, 2);
  await submit(page, '.qvBulk button');
  await submit(page, 'form.qvForm button.qvDanger');
  await search(page, base, listPage, mark);
  check(label('all deleted'), (await listRows(page)).length, 0);
  await go(page, base + listPage);
  check(label('count back'), (await count(page)).includes(String(d.rows)), true);
  check(label('no script errors'), errors, []);
  await page.close();
}

// Every input of one table's pages, tried with SQL and with script: the address parameters of
// the list, view, edit, copy and delete pages, and each field of the add and edit forms. No
// statement may fail (the server answers 500 when one does), no injected script may run, a
// search for a quote finds nothing, a key that is no key finds no record, the text comes back
// as it was typed, and a change without the form's token is refused.
async function injections(browser, d, base) {
  const page = await browser.newPage();
  const label = (what) => `${d.name} injection: ${what}`;
  let dialogs = 0;
  page.on('dialog', async (dialog) => {
    dialogs++;
    await dialog.dismiss();
  });
  const sql = [`' OR '1'='1`, `1 OR 1=1`, `1); DROP TABLE ${d.table}; --`, `" OR ""="`, `1 UNION SELECT name FROM sqlite_master --`, `99999999999999999999`, `-1e308`];
  const script = [`<script>window.qvOwned=1</script>`, `"><img src=x onerror="window.qvOwned=1">`, `'><svg onload=window.qvOwned=1>`, `javascript:window.qvOwned=1`, `</textarea><script>window.qvOwned=1</script>`];
  const owned = () => page.evaluate(() => window.qvOwned === 1);
  const pages = {
    [`${d.table}list.asp`]: ['q', 'order', 'dir', 'size', 'start', 'edit', 'export'],
    [`${d.table}view.asp`]: ['key'],
    [`${d.table}edit.asp`]: ['key'],
    [`${d.table}add.asp`]: ['copy'],
    [`${d.table}delete.asp`]: ['key'],
  };
  // The address parameters straight over HTTP (a page per value in the browser would take
  // minutes): no failed statement, no injected markup in the page, no record for a false key.
  for (const [name, params] of Object.entries(pages)) {
    for (const param of params) {
      for (const value of [...sql, ...script]) {
        const response = await fetch(`${base}${name}?${param}=${encodeURIComponent(value)}`, { redirect: 'manual' });
        const body = await response.text();
        const what = `${name}?${param}=${value}`;
        if (response.status >= 500) check(label(`${what} answers`), response.status, 200);
        if (/<(script|img|svg)[ >]/i.test(value) && body.includes(value.slice(value.indexOf("<"), value.indexOf("<") + 20))) {
          check(label(`${what} writes no markup`), true, false);
        }
        if (param === 'key' && name !== `${d.table}delete.asp`) check(label(`${what} finds nothing`), response.status, 404);
      }
    }
  }
  // The search text in the browser too: it is shown in the search box and the page.
  for (const value of script) {
    await go(page, `${base}${d.table}list.asp?q=${encodeURIComponent(value)}`);
    check(label(`the search box holds ${value}`), await page.$eval('form.qvSearch input[name=q]', (e) => e.value), value);
    if (await owned()) check(label(`searching ${value} runs no script`), true, false);
  }
  await go(page, `${base}${d.table}list.asp?q=${encodeURIComponent(`' OR '1'='1`)}`);
  check(label('a quote searches for itself'), (await listRows(page)).length, 0);

  // Each text field of the add form with both kinds at once; what is saved shows as typed.
  await go(page, `${base}${d.table}add.asp`);
  const fields = await page.$$eval('form.qvForm input[type=text], form.qvForm textarea', (es) => es.map((e) => [e.id, e.maxLength > 0 ? e.maxLength : 40]));
  const typed = {};
  for (const [i, [id, size]] of fields.entries()) {
    const field = id.replace(/^qv_x_/, '');
    if (field === d.date || field === d.number || field === 'InvoiceId') continue;
    typed[id] = `${script[i % script.length]}${sql[i % 4]}`.slice(0, Math.min(size, 40));
  }
  for (const [id, value] of Object.entries(typed)) {
    await page.$eval(`#${id}`, (e, v) => (e.value = v), value);
  }
  await fill(page, d, { [d.lookup.field]: d.lookup.pick, [d.date]: '2020-01-02', [d.number]: '1' });
  await submit(page, 'form.qvForm button[type=submit]');
  check(label('saved'), new URL(page.url()).pathname, `/${d.table}list.asp`);
  await go(page, `${base}${d.table}list.asp?order=x_${d.key}&dir=DESC`);
  const newest = await page.$eval('table.qvGrid tbody tr', (tr) => tr.textContent);
  check(label('the list shows the text'), newest.includes(typed[`qv_x_${d.text}`]), true);
  check(label('the list runs no script'), await owned(), false);
  await submit(page, 'table.qvGrid tbody tr td.qvActions a[href*="view.asp"]');
  check(label('the view runs no script'), await owned(), false);
  const viewText = await page.$eval('main', (m) => m.textContent);
  check(label('the view shows the text'), viewText.includes(typed[`qv_x_${d.text}`]), true);
  await go(page, `${base}${d.table}list.asp?order=x_${d.key}&dir=DESC`);
  await submit(page, 'table.qvGrid tbody tr td.qvActions a[href*="edit.asp"]');
  check(label('the edit form runs no script'), await owned(), false);
  for (const [id, value] of Object.entries(typed)) {
    check(label(`the edit form holds ${id}`), await page.$eval(`#${id}`, (e) => e.value), value);
  }

  // The same record through the edit form, told to go back to another site: it stays here.
  // Then a delete without the token: refused.
  await page.$eval('form.qvForm', (f) => {
    const back = document.createElement('input');
    Object.assign(back, { type: 'hidden', name: 'qvreturn', value: 'https://example.invalid/' });
    f.appendChild(back);
  });
  await submit(page, 'form.qvForm button[type=submit]');
  check(label('the way back stays in the application'), new URL(page.url()).origin, new URL(base).origin);
  await go(page, `${base}${d.table}list.asp?order=x_${d.key}&dir=DESC`);
  const key = await page.$eval('table.qvGrid tbody tr td.qvActions a[href*="edit.asp"]', (a) => new URL(a.href).searchParams.get('key'));
  const forged = await page.evaluate(async (url, key) => {
    const body = new URLSearchParams({ key, qvconfirm: '1' });
    return (await fetch(url, { method: 'POST', body })).status;
  }, `${base}${d.table}delete.asp`, key);
  check(label('a forged delete is no error'), forged < 500, true);
  await go(page, `${base}${d.table}view.asp?key=${encodeURIComponent(key)}`);
  check(label('a forged delete deletes nothing'), (await page.$eval('main', (m) => m.textContent)).includes(typed[`qv_x_${d.text}`]), true);

  // Cleaning up through the page, with the token.
  await go(page, `${base}${d.table}delete.asp?key=${encodeURIComponent(key)}`);
  await submit(page, 'form.qvForm button.qvDanger');
  await go(page, `${base}${d.table}list.asp`);
  check(label('the table is whole'), (await count(page)).includes(String(d.rows)), true);
  check(label('no dialog opened'), dialogs, 0);
  await page.close();
}

// The custom view lists its rows; the report groups Chinook's invoices by country and city,
// sums and maximums each country, and totals them all.
async function reports(browser, base) {
  const page = await browser.newPage();
  await page.setViewport({ width: 1100, height: 800 });
  const label = (what) => `report: ${what}`;
  await go(page, base);
  const menu = await page.$$eval('nav.qvNav a', (as) => as.map((a) => a.getAttribute('href')));
  check(label('menu'), menu.includes('BigInvoiceslist.asp') && menu.includes('Salesreport.asp'), true);
  await go(page, `${base}BigInvoiceslist.asp`);
  check(label('custom view count'), (await count(page)).includes('64'), true);
  check(label('custom view sorts'), (await page.$$('table.qvGrid thead th a[href*="order="]')).length, 3);

  check(label('answers'), await go(page, `${base}Salesreport.asp`), 200);
  const groups = await page.$$eval('table.qvReport tr.qvGroup.qvLevel1 th', (ths) => ths.map((th) => th.textContent));
  check(label('countries'), groups.length, 24);
  check(label('Germany heading'), groups.some((g) => g.endsWith(': Germany')), true);
  const summary = await page.$$eval('table.qvReport tr', (trs) => trs.map((tr) => tr.textContent.replace(/\s+/g, ' ').trim()));
  const at = summary.findIndex((t) => t.includes('Germany (28 '));
  check(label('Germany summary'), at > 0, true);
  check(label('Germany sum'), (summary[at + 1] || '').includes('156.48'), true);
  check(label('cities of Germany'), summary.slice(summary.findIndex((t) => t.endsWith(': Germany')), at).filter((t) => /^Billing City: /.test(t)).length, 3);
  const total = summary.findIndex((t) => t.includes('(412 '));
  check(label('grand total'), total > 0 && total === summary.length - 3, true);
  check(label('grand sum'), (summary[total + 1] || '').includes('2328.6'), true);
  check(label('grand maximum'), (summary[total + 2] || '').includes('25.86'), true);
  check(label('details'), (await page.$$('table.qvReport tr.qvDetail')).length, 412);
  await page.screenshot({ path: join(artefacts, 'sqlite-report.png') });
  await page.close();
}

const launched = [];
let browser;
try {
  browser = await puppeteer.launch({
    executablePath: chromium,
    headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'],
  });
  for (const d of databases) {
    const dir = join(work, d.name);
    mkdirSync(join(dir, 'home'), { recursive: true });
    const env = { ODBCSYSINI: dbDir, ODBCINI: join(dbDir, 'odbc.ini') };
    const source = d.db();
    if (!source) {
      console.log(`SKIP ${d.name}: the test server is not running`);
      continue;
    }
    const started = Date.now();
    generate(d, dir, env, source);
    console.log(`${d.name}: generated in ${((Date.now() - started) / 1000).toFixed(1)} s`);
    const server = await serve(dir, env);
    launched.push(server.child);
    await cycle(browser, d, server.base);
    if (d.name === 'sqlite') await reports(browser, server.base);
    if (d.name === 'sqlite') await injections(browser, d, server.base);
    console.log(`${d.name}: ${((Date.now() - started) / 1000).toFixed(1)} s`);
  }
} finally {
  if (browser) await browser.close();
  for (const child of launched) child.kill('SIGTERM');
  rmSync(work, { recursive: true, force: true });
}
console.log(`${passes} passed, ${failures} failed`);
process.exit(failures ? 1 : 0);
