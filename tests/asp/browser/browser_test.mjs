// The test site in a real browser: headless Chromium from Debian, driven by puppeteer-core,
// against `quorvex serve` started here on a free port. Signs in through a form, keeps the
// session across pages, posts Unicode text, uploads a file, follows redirects, sees a cookie,
// and keeps a screenshot of the welcome page.
//
//   node browser_test.mjs <quorvex binary> <site folder> <artefact folder>
import { mkdirSync, writeFileSync } from 'node:fs';
import { join } from 'node:path';
import { check, finish, launch, serve, text } from './harness.mjs';

const [quorvex, site, artefacts] = process.argv.slice(2);

const { child, port } = await serve(quorvex, site);
const base = `http://127.0.0.1:${port}`;
const browser = await launch();
try {
  const page = await browser.newPage();
  await page.setViewport({ width: 900, height: 640 });

  // An unknown user is sent to the sign-in page.
  await page.goto(`${base}/welcome.asp`);
  check('redirect to sign-in', new URL(page.url()).pathname, '/login.asp');

  await page.type('#user', 'Zoë');
  await page.type('#password', 'wrong');
  await Promise.all([page.waitForNavigation(), page.click('#signin')]);
  check('wrong password', await text(page, '#message'), 'Wrong user name or password.');

  await page.type('#password', 'secret');
  await Promise.all([page.waitForNavigation(), page.click('#signin')]);
  check('signed in', await text(page, '#greeting'), 'Welcome, Zoë');
  check('first visit', await text(page, '#visits'), '1');

  // The session cookie is HttpOnly and Lax; the page's own cookie is readable.
  const cookies = await browser.cookies();
  const session = cookies.find((c) => c.name === 'ASPSESSIONID');
  check('session cookie http-only', session && session.httpOnly, true);
  check('session cookie same-site', session && session.sameSite, 'Lax');
  check('page cookie', decodeURIComponent((cookies.find((c) => c.name === 'lastuser') || {}).value || ''), 'Zoë');

  // Unicode text through a form, kept in the session.
  const note = 'Grüße, 世界 — ✓ 𝄞';
  await page.type('#notefield', note);
  await Promise.all([page.waitForNavigation(), page.click('#save')]);
  check('unicode note', await text(page, '#note'), note);
  check('note length in UTF-16 units', await text(page, '#notelength'), String(note.length));
  check('second visit', await text(page, '#visits'), '2');

  await page.reload();
  check('session kept', await text(page, '#visits'), '3');
  mkdirSync(artefacts, { recursive: true });
  await page.screenshot({ path: join(artefacts, 'asp-welcome.png') });

  // A file through a multipart form.
  const upload = join(artefacts, 'upload-sample.txt');
  writeFileSync(upload, 'uploaded through the browser\n');
  const input = await page.$('#file');
  await input.uploadFile(upload);
  await page.type('#title', 'Übersicht');
  await Promise.all([page.waitForNavigation(), page.click('#send')]);
  check('upload title', await text(page, '#title'), 'Übersicht');
  check('upload file name', await text(page, '#filename'), 'upload-sample.txt');
  check('upload carried bytes', Number(await text(page, '#bytes')) > 29, true);

  // Signing out abandons the session: the welcome page sends us back.
  await page.goto(`${base}/logout.asp`);
  check('signed out', new URL(page.url()).pathname, '/login.asp');
  check('remembered user', await page.$eval('#user', (e) => e.value), 'Zoë');
  await page.goto(`${base}/welcome.asp`);
  check('session ended', new URL(page.url()).pathname, '/login.asp');
} finally {
  await browser.close();
  child.kill('SIGTERM');
}
finish();
