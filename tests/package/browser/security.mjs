// Login, user levels and the audit trail, on Chinook only. The login would close the shared
// application to every other module, so this one generates a second application of its own,
// from a copy of Chinook with a user table: a stranger is sent to the login page, a manager
// and an agent see different customers and menus, a page beyond the agent's level is
// refused, repeated wrong passwords make the login wait, and each change leaves one audit
// line. Screenshots of the login and the refusal are kept.
import { spawnSync } from 'node:child_process';
import { copyFileSync, mkdirSync, mkdtempSync, readFileSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { artefacts, check, count, go, newPage, run as quorvex, serve, shared, submit } from './app.mjs';

const users = `CREATE TABLE AppUser (UserId INTEGER PRIMARY KEY, Login TEXT NOT NULL UNIQUE, Password TEXT,
  Email TEXT, Level TEXT DEFAULT 'Agent', RepId INTEGER);
  INSERT INTO AppUser VALUES (1, 'andrew', 'manager-pw', 'andrew@x.org', 'Manager', 1),
  (2, 'jane', 'jane-pw-3', 'jane@x.org', 'Agent', 3);`;

async function secureApp() {
  const dir = mkdtempSync(join(tmpdir(), 'qv-secure-'));
  mkdirSync(join(dir, 'home'));
  const db = join(dir, 'chinook.sqlite');
  copyFileSync(join(shared, 'sqlite/chinook.sqlite'), db);
  const made = spawnSync('sqlite3', [db, users], { encoding: 'utf8' });
  if (made.status !== 0) throw new Error(`sqlite3: ${made.stderr}`);
  const q = (...args) => quorvex(dir, {}, ...args);
  q('new', 'app.qvp', '--db', `sqlite:${db}`);
  q('set', 'app.qvp', 'SecType=Use Table', 'SecTbl=AppUser', 'SecLoginIDFld=Login', 'SecPasswdFld=Password');
  q('set', 'app.qvp', '--database', 'SecUserLevelFld=Level', 'SecuUserIDFld=RepId');
  q('set', 'app.qvp', '--table', 'Customer', 'TblUserIDFld=SupportRepId', 'TblSecurity=Manager:*;Agent:LVE', 'TblAuditTrail=True');
  q('set', 'app.qvp', '--table', 'Employee', 'TblSecurity=Manager:*');
  q('generate', 'app.qvp', '--dest', 'app', '--overwrite', 'all');
  return { dir, server: await serve(dir, {}) };
}

async function login(page, base, name, password) {
  await go(page, base + 'logout.asp');
  await page.type('#qv_username', name);
  await page.type('#qv_password', password);
  await submit(page, 'form.qvLogin button[type=submit]');
}

const menu = (page) => page.$$eval('nav.qvNav a', (as) => as.map((a) => a.textContent));

export async function run(browser, d, base) {
  if (d.name !== 'sqlite') return;
  const { dir, server } = await secureApp();
  const app = server.base;
  const page = await newPage(browser);
  try {
    // A stranger asking for a list lands on the login form, and returns there after it.
    await go(page, app + 'Customerlist.asp');
    check('a stranger is sent to the login', new URL(page.url()).pathname, '/login.asp');
    await page.screenshot({ path: join(artefacts, 'security-login.png'), fullPage: true });
    const sessionCookie = async () => (await page.cookies()).find((c) => c.name === 'ASPSESSIONID')?.value;
    const before = await sessionCookie();
    await page.type('#qv_username', 'andrew');
    await page.type('#qv_password', 'manager-pw');
    await submit(page, 'form.qvLogin button[type=submit]');
    check('the login returns to the list', new URL(page.url()).pathname, '/Customerlist.asp');
    check('the login gives the session a new cookie', before !== undefined && (await sessionCookie()) !== before, true);
    check('a manager sees every customer', (await count(page)).includes('59'), true);
    check('a manager has the employees in the menu', (await menu(page)).includes('Employee'), true);

    // The agent: her own customers, no employees, and their page refused.
    await login(page, app, 'jane', 'jane-pw-3');
    await go(page, app + 'Customerlist.asp');
    check('an agent sees her own customers', (await count(page)).includes('21'), true);
    check('the header names the user', await page.$eval('.qvUser', (e) => e.textContent), 'jane');
    check('no employees and no users in her menu', (await menu(page)).filter((m) => m === 'Employee' || m === 'App User'), []);
    check('the employee list is refused', await go(page, app + 'Employeelist.asp'), 403);
    check('the refusal says why', await page.$eval('.qvMessage', (e) => e.textContent), 'You are not allowed to see this page.');
    check('the refusal shows no data', await page.$('table.qvGrid'), null);
    await page.screenshot({ path: join(artefacts, 'security-denied.png'), fullPage: true });
    check("another agent's customer is not found", await go(page, app + 'Customerview.asp?key=2'), 404);

    // Her change to her customer leaves one line in the audit trail.
    await go(page, app + 'Customeredit.asp?key=1');
    await page.$eval('#qv_x_City', (e) => (e.value = ''));
    await page.type('#qv_x_City', 'Campinas');
    await submit(page, 'form.qvForm button[type=submit]');
    const audit = join(dir, 'app/audit');
    const lines = readdirSync(audit)
      .filter((f) => f.startsWith('audit-'))
      .flatMap((f) => readFileSync(join(audit, f), 'utf8').split('\r\n'))
      .filter((l) => l);
    check('one audit line for the change', lines.length, 1);
    check('the line says who changed what', /\tjane\t127\.0\.0\.1\tCustomer\tedit\t1\tCity: São José dos Campos -> Campinas$/.test(lines[0] || ''), true);

    // Wrong passwords: the fourth try waits, even with the right password.
    for (const guess of ['a1', 'b2', 'c3']) await login(page, app, 'jane', guess);
    await login(page, app, 'jane', 'jane-pw-3');
    check('brute force is slowed down', (await page.$eval('.qvError', (e) => e.textContent)).startsWith('Too many failed logins.'), true);
    check('no script errors on the secure pages', page.qvErrors, []);
  } finally {
    await page.close();
    server.child.kill('SIGTERM');
    rmSync(dir, { recursive: true, force: true });
  }
}
