// The generated application in a real browser: the default package generated from Chinook
// (SQLite) and from a small film database on the PostgreSQL and MariaDB test servers, each
// served by `quorvex serve`, driven by Debian's headless Chromium through puppeteer-core.
// PostgreSQL runs in German. Screenshots are kept as artefacts.
//
//   node browser_test.mjs <quorvex binary> <shared data folder> <artefact folder> [module...]
//
// Each feature area is a module in browser/ (app.mjs holds what they share). A module may
// export `settings(d)`, the quorvex commands it needs on the project before generation, and
// `run(browser, d, base, site)`, its checks on the served application; the driver generates and
// serves each database once for all modules, in the order of their file names, in one
// browser. Naming modules on the command line runs only those. QV_DB_DIR names the test
// servers' folder (scripts/db/start.sh); a server that is down is reported and skipped.
import { mkdirSync, mkdtempSync, readdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium, databases, dbDir, here, puppeteer, run, serve, tally } from './browser/app.mjs';

const only = process.argv.slice(5);
const names = readdirSync(here)
  .filter((f) => f.endsWith('.mjs') && f !== 'app.mjs')
  .map((f) => f.replace(/\.mjs$/, ''))
  .filter((n) => only.length === 0 || only.includes(n))
  .sort();
const modules = [];
for (const n of names) modules.push({ name: n, ...(await import(pathToFileURL(join(here, `${n}.mjs`)))) });

// A project of the database with every module's settings, generated into <dir>/app.
function generate(d, dir, env, source) {
  run(dir, env, 'new', 'app.qvp', '--db', source);
  for (const m of modules) for (const args of m.settings ? m.settings(d) : []) run(dir, env, ...args);
  const language = d.language ? ['--language', d.language] : [];
  run(dir, env, 'generate', 'app.qvp', '--dest', 'app', '--overwrite', 'all', '--refresh-template', ...language);
}

const work = mkdtempSync(join(tmpdir(), 'qv-app-browser-'));
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
    for (const m of modules) {
      const at = Date.now();
      if (m.run) await m.run(browser, d, server.base, join(dir, 'app'));
      console.log(`${d.name} ${m.name}: ${((Date.now() - at) / 1000).toFixed(1)} s`);
    }
    console.log(`${d.name}: ${((Date.now() - started) / 1000).toFixed(1)} s`);
  }
} finally {
  if (browser) await browser.close();
  for (const child of launched) child.kill('SIGTERM');
  rmSync(work, { recursive: true, force: true });
}
console.log(`${tally.passes} passed, ${tally.failures} failed`);
process.exit(tally.failures ? 1 : 0);
