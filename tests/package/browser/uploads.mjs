// File fields and charts on Chinook. An employee's Fax becomes an upload field shown as a
// picture: a PNG uploaded through the edit form appears in the list, its field page hands it
// back as image/png, an uploaded .asp (plain or hidden behind ".jpg") is refused and never
// lands where the server could run it, nor does one put there by other means run; a deleted record's picture goes with it. A chart of the invoices by country stands above the
// invoice list, a doughnut below it and bars on the report, drawn as SVG by the server.
import { writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { deflateSync } from 'node:zlib';
import { artefacts, check, go, newPage, submit } from './app.mjs';

export function settings(d) {
  if (d.name !== 'sqlite') return [];
  return [
    ['set', 'app.qvp', '--table', 'Employee', '--field', 'Fax', 'FldHtmlTag=FILE', 'FldViewTag=IMAGE', 'FldTagImgWidth=40', 'FldUploadPath=pictures/staff'],
    ['chart', 'add', 'app.qvp', 'Invoice', 'Sales by country', 'ChartXFldName=BillingCountry', 'ChartYFldName=Total', 'ChartSortType=4'],
    ['chart', 'add', 'app.qvp', 'Invoice', 'Share', 'ChartXFldName=BillingCountry', 'ChartType=6', 'ChartPosition=2'],
    ['report', 'app.qvp', 'CountrySales', '--from', 'Invoice'],
    ['set', 'app.qvp', '--table', 'CountrySales', '--field', 'BillingCountry', 'FldGroupBy=1'],
    ['chart', 'add', 'app.qvp', 'CountrySales', 'Countries', 'ChartXFldName=BillingCountry', 'ChartYFldName=Total', 'ChartType=2'],
  ];
}

// A small red square as a PNG file.
function png(path) {
  const crc = (buf) => {
    let c = ~0;
    for (const b of buf) {
      c ^= b;
      for (let k = 0; k < 8; k++) c = c & 1 ? (c >>> 1) ^ 0xedb88320 : c >>> 1;
    }
    return ~c >>> 0;
  };
  const chunk = (type, data) => {
    const head = Buffer.alloc(4);
    head.writeUInt32BE(data.length);
    const body = Buffer.concat([Buffer.from(type), data]);
    const tail = Buffer.alloc(4);
    tail.writeUInt32BE(crc(body));
    return Buffer.concat([head, body, tail]);
  };
  const ihdr = Buffer.alloc(13);
  ihdr.writeUInt32BE(16, 0);
  ihdr.writeUInt32BE(16, 4);
  ihdr[8] = 8;
  ihdr[9] = 2;
  const row = Buffer.concat([Buffer.from([0]), Buffer.from('\xcc\x22\x22'.repeat(16), 'latin1')]);
  const bytes = Buffer.concat([
    Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]),
    chunk('IHDR', ihdr),
    chunk('IDAT', deflateSync(Buffer.concat(Array(16).fill(row)))),
    chunk('IEND', Buffer.alloc(0)),
  ]);
  writeFileSync(path, bytes);
  return bytes;
}

async function upload(page, base, file) {
  await go(page, `${base}Employeeedit.asp?key=2`);
  const input = await page.$('#qv_x_Fax');
  await input.uploadFile(file);
  await submit(page, 'form.qvForm button[type=submit]');
}

export async function run(browser, d, base, site) {
  if (d.name !== 'sqlite') return;
  const page = await newPage(browser);
  const label = (what) => `uploads: ${what}`;
  // A page put into an upload folder by other means than an upload never runs there.
  writeFileSync(join(site, 'pictures/staff/planted.asp'), '<% Response.Write "ran" %>');
  check(label('planted page not run'), await go(page, `${base}pictures/staff/planted.asp`), 403);
  const picture = join(artefacts, 'upload-red.png');
  const bytes = png(picture);

  await upload(page, base, picture);
  check(label('saved'), page.url().endsWith('Employeelist.asp'), true);
  // Pictures load lazily and after the page: bring this one into view and let it arrive.
  await page.$eval('img.qvImage[src="Employee_Fax.asp?key=2"]', (i) => i.scrollIntoView({ inline: 'center' }));
  await page
    .waitForFunction(() => {
      const i = document.querySelector('img.qvImage[src="Employee_Fax.asp?key=2"]');
      return i && i.complete && i.naturalWidth > 0;
    }, { timeout: 20000 })
    .catch(() => {});
  const img = await page.$$eval('table.qvGrid img.qvImage', (imgs) =>
    imgs.filter((i) => i.naturalWidth > 0).map((i) => ({ src: i.getAttribute('src'), width: i.getAttribute('width') })));
  check(label('only the picture shown in the list'), img, [{ src: 'Employee_Fax.asp?key=2', width: '40' }]);
  const served = await page.evaluate(async (u) => {
    const r = await fetch(u);
    return { type: r.headers.get('content-type'), size: (await r.arrayBuffer()).byteLength };
  }, `${base}Employee_Fax.asp?key=2`);
  check(label('field page'), served, { type: 'image/png', size: bytes.length });
  check(label('stored in its folder'), await go(page, `${base}pictures/staff/upload-red.png`), 200);
  await go(page, `${base}Employeelist.asp`);
  await page.$eval('table.qvGrid img.qvImage', (i) => i.scrollIntoView({ inline: 'center' }));
  await page.screenshot({ path: join(artefacts, 'sqlite-upload-list.png') });

  // A page the server would run is refused, whatever its last extension.
  for (const name of ['evil.asp', 'evil.asp.jpg']) {
    const file = join(artefacts, name);
    writeFileSync(file, '<% Response.Write "ran" %>');
    await upload(page, base, file);
    const message = await page.$eval('#qv_x_Fax ~ .qvFieldError', (e) => e.textContent);
    check(label(`${name} refused`), /not allowed/.test(message), true);
    check(label(`${name} not stored`), await go(page, `${base}pictures/staff/${name}`), 404);
  }
  check(label('old picture kept'), await go(page, `${base}Employee_Fax.asp?key=2`), 200);

  // A new record with a picture, then deleted: its file goes with it (DeleteUploadedFile).
  await go(page, `${base}Employeeadd.asp`);
  await page.type('#qv_x_LastName', 'Upload');
  await page.type('#qv_x_FirstName', 'Test');
  await (await page.$('#qv_x_Fax')).uploadFile(picture);
  await submit(page, 'form.qvForm button[type=submit]');
  check(label('second copy stored apart'), await go(page, `${base}pictures/staff/upload-red-1.png`), 200);
  await go(page, `${base}Employeedelete.asp?key=9`);
  await submit(page, 'form.qvForm button.qvDanger');
  check(label('file deleted with its record'), await go(page, `${base}pictures/staff/upload-red-1.png`), 404);
  check(label('other file kept'), await go(page, `${base}pictures/staff/upload-red.png?again`), 200);

  // The charts: columns above the invoices, a doughnut below, and one on the report.
  await go(page, `${base}Invoicelist.asp`);
  const charts = await page.$$eval('figure.qvChart', (fs) => fs.map((f) => ({
    name: f.dataset.chart,
    shapes: f.querySelectorAll('rect[fill-opacity], path').length,
    before: !!(f.compareDocumentPosition(document.querySelector('table.qvGrid')) & Node.DOCUMENT_POSITION_FOLLOWING),
  })));
  check(label('charts on the list'), charts, [
    { name: 'Sales by country', shapes: 24, before: true },
    { name: 'Share', shapes: 24, before: false },
  ]);
  const top = await page.$eval('figure.qvChart rect[fill-opacity] title', (t) => t.textContent);
  check(label('largest first'), top.startsWith('USA: '), true);
  await page.$eval('figure.qvChart', (f) => f.scrollIntoView());
  await page.screenshot({ path: join(artefacts, 'sqlite-chart.png') });
  await go(page, `${base}CountrySalesreport.asp`);
  check(label('chart on the report'), await page.$$eval('figure.qvChart rect[fill-opacity]', (r) => r.length), 24);
  check(label('no script errors'), page.qvErrors, []);
  await page.close();
}
