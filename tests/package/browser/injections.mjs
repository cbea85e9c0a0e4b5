import { check, count, fill, go, listRows, submit } from './app.mjs';

// Every input of one table's pages, tried with SQL and with script: the address parameters of
// the list, view, edit, copy and delete pages, and each field of the add and edit forms. No
// statement may fail (the server answers 500 when one does), no injected script may run, a
// search for a quote finds nothing, a key that is no key finds no record, the text comes back
// as it was typed, and a change without the form's token is refused.
export async function run(browser, d, base) {
  if (d.name !== 'sqlite') return;
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

