import { join } from 'node:path';
import { artefacts, check, count, go } from './app.mjs';

// A custom view and a report of Chinook's invoices, grouped by country and city.
export function settings(d) {
  if (d.name !== 'sqlite') return [];
  return [
    ['customview', 'app.qvp', 'BigInvoices', '--sql', 'SELECT InvoiceId, BillingCountry, Total FROM Invoice WHERE Total > 10;'],
    ['report', 'app.qvp', 'Sales', '--from', 'Invoice'],
    // Tables added to a loaded project start from zero paging and sorting settings.
    ['set', 'app.qvp', '--table', 'BigInvoices', 'TblSortType=1', 'TblRecPerPage=20'],
    ['set', 'app.qvp', '--table', 'Sales', 'TblRptShowGrandTotal=True', 'TblRptShowDetails=True', 'TblRptIndent=2'],
    ['set', 'app.qvp', '--table', 'Sales', '--field', 'BillingCountry', 'FldGroupBy=1', 'FldGroupByShowSummary=True'],
    ['set', 'app.qvp', '--table', 'Sales', '--field', 'BillingCity', 'FldGroupBy=2'],
    ['set', 'app.qvp', '--table', 'Sales', '--field', 'Total', 'FldRptAggSum=True', 'FldRptAggMax=True'],
  ];
}

// The custom view lists its rows; the report groups Chinook's invoices by country and city,
// sums and maximums each country, and totals them all.
export async function run(browser, d, base) {
  if (d.name !== 'sqlite') return;
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

