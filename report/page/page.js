'use strict';
// Filter, sort and keyboard of the tables. Rows are moved and hidden, never made: texts stay texts.
(() => {
  const collator = new Intl.Collator('en', {numeric: true, sensitivity: 'base'});
  const everywhere = document.getElementById('everywhere');
  const parts = [];

  const words = (input) => input.value.toLowerCase().split(/\s+/).filter(Boolean);

  function add_table(table) {
    const section = table.closest('section');
    const part = {
      body: table.tBodies[0],
      rows: [...table.tBodies[0].rows],
      filter: section.querySelector('input'),
      count: section.querySelector('.count'),
      texts: null,
    };
    parts.push(part);
    part.filter.addEventListener('input', () => later(() => filter(part)));
    table.tHead.addEventListener('click', (event) => {
      const head = event.target.closest('th');
      if (head && event.target.closest('button')) sort(part, table, head);
    });
    part.body.addEventListener('keydown', (event) => move(part, event));
    part.body.addEventListener('click', (event) => {
      const row = event.target.closest('tr');
      if (row && !event.target.closest('details') && !String(getSelection())) row.classList.toggle('open');
    });
    first_in_order(part);
  }

  let timer = 0;
  function later(action) {
    clearTimeout(timer);
    timer = setTimeout(action, 60);
  }

  function filter(part) {
    const wanted = [...words(everywhere), ...words(part.filter)];
    part.texts ??= new Map(part.rows.map((row) => [row, row.textContent.toLowerCase()]));
    let shown = 0;
    for (const row of part.rows) {
      const text = part.texts.get(row);
      row.hidden = !wanted.every((word) => text.includes(word));
      if (!row.hidden) ++shown;
    }
    part.count.textContent = wanted.length ? `${shown} of ${part.rows.length} rows shown` : '';
    first_in_order(part);
  }

  function sort(part, table, head) {
    const down = head.getAttribute('aria-sort') === 'ascending';
    for (const other of table.tHead.rows[0].cells) other.removeAttribute('aria-sort');
    head.setAttribute('aria-sort', down ? 'descending' : 'ascending');
    const key = (row) => {
      const cell = row.cells[head.cellIndex];
      return cell.dataset.s === undefined ? cell.textContent : Number(cell.dataset.s);
    };
    const keyed = part.rows.map((row) => [key(row), row]);
    // What is empty stands last, whichever way.
    const compare = (a, b) => {
      if (a === '' || b === '') return a === b ? 0 : a === '' ? 1 : -1;
      const order = typeof a === 'number' && typeof b === 'number' ? a - b : collator.compare(a, b);
      return down ? -order : order;
    };
    keyed.sort((a, b) => compare(a[0], b[0]));
    part.rows = keyed.map((pair) => pair[1]);
    part.body.append(...part.rows);
    first_in_order(part);
  }

  // One row of each table can be reached with Tab, the others with the arrows.
  function first_in_order(part) {
    let found = false;
    for (const row of part.rows) {
      row.tabIndex = !found && !row.hidden ? 0 : -1;
      found ||= !row.hidden;
    }
  }

  function show_more(row, open) {
    row.classList.toggle('open', open);
    for (const more of row.querySelectorAll('details')) more.open = open;
  }

  function move(part, event) {
    const row = event.target;
    if (row.tagName !== 'TR') return;
    const visible = part.rows.filter((one) => !one.hidden);
    const at = visible.indexOf(row);
    const to = {ArrowDown: at + 1, ArrowUp: at - 1, PageDown: at + 20, PageUp: at - 20, Home: 0,
      End: visible.length - 1}[event.key];
    if (to !== undefined) {
      const next = visible[Math.max(0, Math.min(to, visible.length - 1))];
      if (next !== row && row.querySelector('details[open]')) {
        show_more(row, false);
        show_more(next, true);
      }
      next.focus();
    } else if (event.key === 'Enter' || event.key === ' ') {
      show_more(row, !row.classList.contains('open'));
    } else {
      return;
    }
    event.preventDefault();
  }

  document.addEventListener('keydown', (event) => {
    const typing = event.target.tagName === 'INPUT';
    if (event.key === '/' && !typing) {
      const section = event.target.closest?.('section');
      (section?.querySelector('input') ?? everywhere).focus();
      event.preventDefault();
    } else if (event.key === 'Escape' && typing) {
      event.target.value = '';
      event.target.dispatchEvent(new Event('input'));
    } else if (event.key === 'Escape') {
      for (const more of document.querySelectorAll('details[open]')) show_more(more.closest('tr'), false);
    }
  });

  for (const table of document.querySelectorAll('table.data')) add_table(table);
  everywhere.addEventListener('input', () => later(() => parts.forEach(filter)));
})();
