// The advanced search and the export of a searched list, on Chinook's invoices: BETWEEN on a
// date (the upper day counted whole), an operator of the user's choice, the search kept while
// the list pages and sorts, a mistyped date refused with a message, and every export format
// fetched and read: CSV rows counted, the XML and the sheet parsed, the Word and HTML tables
// counted.
import { join } from 'node:path';
import { artefacts, check, count, go, listRows, newPage, submit } from './app.mjs';

export function settings(d) {
  if (d.name !== 'sqlite') return [];
  const t = ['set', 'app.qvp', '--table', d.table];
  return [
    [...t, 'TblRecPerPage=10', 'TblSrchType=BOTH', 'TblExportCsv=True', 'TblExportExcel=True', 'TblExportWord=True', 'TblExportXml=True', 'TblExportHtml=True'],
    [...t, '--field', 'InvoiceDate', 'FldSrchOpr=BETWEEN'],
    [...t, '--field', 'BillingCountry', 'FldSrchOpr=USER SELECT'],
  ];
}

export async function run(browser, d, base) {
  if (d.name !== 'sqlite') return;
  const page = await newPage(browser);
  const label = (what) => `search: ${what}`;
  const listPage = `${d.table}list.asp`;
  const setValue = (sel, v) => page.$eval(sel, (e, v) => (e.value = v), v);

  // From the list to the form, and a quarter of invoices found by their dates.
  await go(page, base + listPage);
  await submit(page, `.qvTitleBar a[href^="${d.table}search.asp"]`);
  check(label('the form has both bounds'), (await page.$$('#qv_x_InvoiceDate, #qv_y_InvoiceDate')).length, 2);
  await setValue('#qv_x_InvoiceDate', '2021-01-01');
  await setValue('#qv_y_InvoiceDate', '2021-03-22');
  await submit(page, 'form.qvAdvSearch button[type=submit]');
  check(label('BETWEEN counts the last day whole'), (await count(page)).includes('20'), true);
  await page.screenshot({ path: join(artefacts, 'sqlite-search.png'), fullPage: true });

  // The search stays on the next page and when the list is sorted.
  await submit(page, '.qvPager a[rel=next]');
  check(label('the next page keeps the search'), (await count(page)).includes('11') && (await count(page)).includes('20'), true);
  await submit(page, 'table.qvGrid thead th a[href*="order=x%5FTotal"], table.qvGrid thead th a[href*="order=x_Total"]');
  check(label('sorting keeps the search'), (await count(page)).includes('20'), true);
  const dates = await page.$$eval('table.qvGrid tbody td[data-label="Invoice Date"]', (tds) => tds.map((td) => td.textContent));
  check(label('the dates are in range'), dates.length > 0 && dates.every((t) => /2021\/0[1-3]\//.test(t)), true);

  // The form shows the search again; an operator of the user's choice narrows it further.
  await submit(page, `.qvTitleBar a[href^="${d.table}search.asp"]`);
  check(label('the form keeps the bounds'), await page.$eval('#qv_y_InvoiceDate', (e) => e.value), '2021-03-22');
  await page.select('select[name=z_BillingCountry]', 'STARTS WITH');
  await setValue('#qv_x_BillingCountry', 'ger');
  await submit(page, 'form.qvAdvSearch button[type=submit]');
  check(label('two conditions'), (await listRows(page)).length, 4);
  check(label('all from Germany'), (await listRows(page)).every((r) => r.includes('Germany')), true);

  // Each export of the searched list, read as what it claims to be.
  const links = await page.$$eval('.qvTitleBar a.qvExport', (as) => Object.fromEntries(as.map((a) => [new URL(a.href).searchParams.get('export'), a.href])));
  check(label('five formats'), Object.keys(links).sort(), ['csv', 'excel', 'html', 'word', 'xml']);
  const read = (url, kind) =>
    page.evaluate(
      async (url, kind) => {
        const r = await fetch(url);
        const text = await r.text();
        const type = r.headers.get('content-type');
        if (kind === 'csv') return { type, rows: text.trim().split('\r\n').length };
        const doc = new DOMParser().parseFromString(text, kind === 'xml' ? 'application/xml' : 'text/html');
        if (doc.querySelector('parsererror')) return { type, error: text.slice(0, 200) };
        if (kind === 'xml') return { type, rows: doc.getElementsByTagName('record').length + doc.getElementsByTagName('Row').length };
        return { type, rows: doc.querySelectorAll('tbody tr').length };
      },
      url,
      kind,
    );
  check(label('CSV'), await read(links.csv, 'csv'), { type: 'text/csv; charset=utf-8', rows: 5 });
  check(label('XML'), await read(links.xml, 'xml'), { type: 'application/xml; charset=utf-8', rows: 4 });
  check(label('Excel'), await read(links.excel, 'xml'), { type: 'application/vnd.ms-excel; charset=utf-8', rows: 5 });
  check(label('Word'), await read(links.word, 'html'), { type: 'application/msword; charset=utf-8', rows: 4 });
  check(label('HTML'), await read(links.html, 'html'), { type: 'text/html; charset=utf-8', rows: 4 });

  // A date that is none: said so, and nothing shown rather than everything.
  await go(page, `${base}${listPage}?x_InvoiceDate=${encodeURIComponent('31.02.x')}`);
  check(label('a bad date is named'), (await page.$eval('.qvMessage.qvError', (e) => e.textContent)).includes('Invoice Date'), true);
  check(label('and finds nothing'), (await page.$$('table.qvGrid tbody tr')).length, 0);
  check(label('no script errors'), page.qvErrors, []);
  await page.close();
}
