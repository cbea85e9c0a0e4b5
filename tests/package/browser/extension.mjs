// The shipped JSON API extension, added by name on Chinook: each list links to its table's JSON
// page, which pages the rows and gives one record by its key, the index lists the tables, and
// the list's bulk bar carries the link (the extension changes that session of the list).
import { check, count, go, newPage } from './app.mjs';

export function settings(d) {
  return d.name === 'sqlite' ? [['extension', 'add', 'app.qvp', 'api']] : [];
}

export async function run(browser, d, base) {
  if (d.name !== 'sqlite') return;
  const page = await newPage(browser);
  const label = (what) => `extension: ${what}`;
  const json = (url) => page.evaluate(async (u) => {
    const r = await fetch(u);
    return { status: r.status, type: r.headers.get('content-type'), body: await r.json() };
  }, url);

  await go(page, `${base}Invoicelist.asp`);
  const total = Number((await count(page)).match(/of ([\d,]+)/)[1].replace(/,/g, ''));
  const link = await page.$eval('.qvBulk a', (a) => a.getAttribute('href'));
  check(label('link from the list'), link, 'Invoiceapi.asp');

  const rows = await json(`${base}Invoiceapi.asp?start=11&size=5`);
  check(label('rows'), [rows.status, rows.type, rows.body.total, rows.body.start, rows.body.rows.length], [200, 'application/json; charset=utf-8', total, 11, 5]);
  check(label('row values'), rows.body.rows[0].InvoiceId === 11 && typeof rows.body.rows[0].Total === 'number', true);
  const one = await json(`${base}Invoiceapi.asp?key=1`);
  check(label('record'), [one.body.InvoiceId, one.body.BillingCity, one.body.Total], [1, 'Stuttgart', 1.98]);
  check(label('missing record'), (await json(`${base}Invoiceapi.asp?key=999999`)).status, 404);
  const index = await json(`${base}api.asp`);
  check(label('index'), index.body.tables.some((t) => t.name === 'Invoice' && t.url === 'Invoiceapi.asp'), true);
  check(label('no script errors'), page.qvErrors, []);
  await page.close();
}
