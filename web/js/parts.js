// Parts of the page that others have made, and that come by npm.

/** What the host says where one is not there: what to do. Undefined where it is there after all, or the host is not. */
export async function whyMissing(address) {
  const answer = await fetch(address).catch(() => undefined);
  return answer?.status === 404 ? `${await answer.text()} All else works.` : undefined;
}
