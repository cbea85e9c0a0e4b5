// Master and detail, and the lookups that do more than list, on Chinook: an artist's albums
// reached from the artist's record, shown under it and added to it; a genre added from the track form
// in place; a customer's support representative chosen among the employees of the customer's
// country.
import { join } from 'node:path';
import { artefacts, check, count, go, newPage, submit } from './app.mjs';

export function settings(d) {
  if (d.name !== 'sqlite') return [];
  const set = (table, ...rest) => ['set', 'app.qvp', '--table', table, ...rest];
  return [
    set('Album', 'TblMasterTbl=Artist', 'TblMasterFld=ArtistId', 'TblDetailFld=ArtistId'),
    set('Track', '--field', 'GenreId', 'FldHtmlTag=SELECT', 'FldTagLnkTbl=Genre', 'FldTagLnkFld=GenreId', 'FldTagLnkDisplay=Name', 'FldSelectAllowAdd=True'),
    set('Customer', '--field', 'SupportRepId', 'FldHtmlTag=SELECT', 'FldTagLnkTbl=Employee', 'FldTagLnkFld=EmployeeId',
      'FldTagLnkDisplay=LastName', 'FldParentSelect=Country', 'FldSelectFilterFld=Country'),
  ];
}

export async function run(browser, d, base) {
  if (d.name !== 'sqlite') return;
  const page = await newPage(browser);
  const label = (what) => `master/detail: ${what}`;

  // From the artist to the albums, with the artist above them; the artists' list links there too.
  await go(page, `${base}Artistlist.asp?q=Zeppelin`);
  check(label('the list links the details'), await page.$eval('td.qvActions a[href^="Albumlist.asp"]', (a) => a.getAttribute('href')), 'Albumlist.asp?master=22');
  await go(page, `${base}Artistview.asp?key=22`);
  await submit(page, 'nav.qvDetails a[href^="Albumlist.asp"]');
  check(label('the albums of Led Zeppelin'), (await count(page)).includes('of 14'), true);
  check(label('the artist above the albums'), (await page.$eval('section.qvMaster', (s) => s.textContent)).includes('Led Zeppelin'), true);
  check(label('a way back to the artist'), await page.$eval('section.qvMaster a[href^="Artistview.asp"]', (a) => a.getAttribute('href')), 'Artistview.asp?key=22');

  // An album added from there belongs to the artist and comes back to the artist's albums.
  await submit(page, '.qvTitleBar a.qvPrimary');
  check(label('the new album starts linked'), await page.$eval('#qv_x_ArtistId', (e) => e.value), '22');
  await page.type('#qv_x_Title', 'Quorvex Sessions');
  await submit(page, 'form.qvForm button[type=submit]');
  check(label('back on the artist\'s albums'), new URL(page.url()).search, '?master=22');
  check(label('one album more'), (await count(page)).includes('of 15'), true);
  await page.screenshot({ path: join(artefacts, 'sqlite-detail.png'), fullPage: true });
  await go(page, `${base}Albumlist.asp?master=${encodeURIComponent("' OR 1=1 --")}`);
  check(label('a master that is none shows nothing'), (await page.$$('table.qvGrid tbody tr')).length, 0);

  // A genre added in place is chosen and kept.
  await go(page, `${base}Trackadd.asp`);
  page.once('dialog', (dialog) => dialog.accept('Quorvex Polka'));
  await page.click('button[data-qv-addlookup="x_GenreId"]');
  await page.waitForFunction(() => document.querySelector('#qv_x_GenreId').selectedOptions[0]?.textContent === 'Quorvex Polka');
  const added = await page.$eval('#qv_x_GenreId', (s) => s.value);
  check(label('the new genre has a key'), /^\d+$/.test(added), true);
  await go(page, `${base}Genrelist.asp?q=Polka`);
  check(label('the genre is stored once'), (await count(page)).includes('of 1'), true);
  const again = await page.evaluate(async (url) => {
    const r = await fetch(url, { method: 'POST', body: new URLSearchParams({ qvaddlookup: 'x_GenreId', qvvalue: 'Forged' }) });
    return r.status;
  }, `${base}Trackadd.asp`);
  check(label('no value without the form'), again, 403);

  // The representatives follow the customer's country.
  await go(page, `${base}Customeradd.asp`);
  const shown = () => page.$$eval('#qv_x_SupportRepId option[data-qv-of]', (os) => os.filter((o) => !o.hidden).length);
  check(label('all before a country'), (await shown()) > 0, true);
  await page.type('#qv_x_Country', 'USA');
  await page.$eval('#qv_x_Country', (e) => e.dispatchEvent(new Event('change')));
  check(label('none in the USA'), await shown(), 0);
  await page.$eval('#qv_x_Country', (e) => { e.value = 'Canada'; e.dispatchEvent(new Event('change')); });
  check(label('the Canadians'), (await shown()) > 0, true);
  check(label('no script errors'), page.qvErrors, []);
  await page.close();
}
