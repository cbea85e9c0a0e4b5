// Scale-out in a real browser: two `quorvex serve` processes sharing state through Redis, and
// nginx balancing over them round robin, all started here on loopback by the project's
// scripts. Headless Chromium signs in through one server and goes on through the other, then
// through nginx, and signs out on the first.
//
//   node scale_test.mjs <quorvex binary> <site folder> <scripts/scale folder> <scratch folder> <artefact folder>
import { execFileSync } from 'node:child_process';
import { mkdirSync, rmSync } from 'node:fs';
import { join } from 'node:path';
import { check, fail, finish, launch, serve, text } from './harness.mjs';

const [quorvex, site, scripts, scratch, artefacts] = process.argv.slice(2);
const script = (name, ...args) => execFileSync(join(scripts, name), args, { encoding: 'utf8' }).trim();

rmSync(scratch, { recursive: true, force: true });
mkdirSync(scratch, { recursive: true });
const servers = [];
let browser;
try {
  const redisPort = script('redis.sh', 'start', join(scratch, 'redis'));
  const state = `redis://127.0.0.1:${redisPort}`;
  servers.push(await serve(quorvex, site, ['--state', state]), await serve(quorvex, site, ['--state', state]));
  const nginxPort = script('nginx.sh', 'start', join(scratch, 'nginx'), String(servers[0].port), String(servers[1].port));
  // Cookies belong to the host whatever the port, so one browser carries the session to all
  // three addresses.
  const [one, two, balanced] = [servers[0].port, servers[1].port, nginxPort].map((p) => `http://127.0.0.1:${p}`);

  browser = await launch();
  const page = await browser.newPage();
  await page.goto(`${one}/login.asp`);
  await page.type('#user', 'Zoë');
  await page.type('#password', 'secret');
  await Promise.all([page.waitForNavigation(), page.click('#signin')]);
  check('signed in on the first server', await text(page, '#greeting'), 'Welcome, Zoë');
  check('first visit', await text(page, '#visits'), '1');

  await page.goto(`${two}/welcome.asp`);
  check('still signed in on the second server', await text(page, '#greeting'), 'Welcome, Zoë');
  check('second visit counted on the second server', await text(page, '#visits'), '2');

  const note = 'Grüße, 世界 — ✓ 𝄞';
  await page.type('#notefield', note);
  await Promise.all([page.waitForNavigation(), page.click('#save')]);
  check('unicode note saved on the second server', await text(page, '#note'), note);

  // Through the balancer every reload lands on the other server and the count goes on.
  await page.goto(`${balanced}/welcome.asp`);
  check('visit 4 through nginx', await text(page, '#visits'), '4');
  for (let visit = 5; visit <= 8; visit++) {
    await page.reload();
    check(`visit ${visit} through nginx`, await text(page, '#visits'), String(visit));
    check(`note ${visit} through nginx`, await text(page, '#note'), note);
  }
  mkdirSync(artefacts, { recursive: true });
  await page.screenshot({ path: join(artefacts, 'asp-scale-welcome.png') });

  // Signing out on the second server ends the session on the first too.
  await page.goto(`${two}/logout.asp`);
  check('signed out', new URL(page.url()).pathname, '/login.asp');
  await page.goto(`${one}/welcome.asp`);
  check('session ended everywhere', new URL(page.url()).pathname, '/login.asp');
} catch (e) {
  fail(e);
} finally {
  if (browser) await browser.close();
  for (const s of servers) s.child.kill('SIGTERM');
  try { script('nginx.sh', 'stop', join(scratch, 'nginx')); } catch {}
  try { script('redis.sh', 'stop', join(scratch, 'redis')); } catch {}
}
finish();
