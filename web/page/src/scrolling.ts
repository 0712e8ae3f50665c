// Source and listing scroll together, line by line: what is first in the one is first in the other.

import type { EditorView } from "@codemirror/view";
import type { Listing } from "./listing";

interface Top {
  line: number;
  part: number; // of its height that is scrolled out
}

function topOf(view: EditorView): Top {
  const block = view.lineBlockAtHeight(view.scrollDOM.scrollTop);
  const part = (view.scrollDOM.scrollTop - block.top) / block.height;
  return { line: view.state.doc.lineAt(block.from).number, part };
}

function scrollTo(view: EditorView, { line, part }: Top): boolean {
  const block = view.lineBlockAt(view.state.doc.line(Math.min(line, view.state.doc.lines)).from);
  const before = view.scrollDOM.scrollTop;
  view.scrollDOM.scrollTop = block.top + part * block.height;
  return view.scrollDOM.scrollTop !== before;
}

// What is given back brings the listing to where the source is.
export function bindScrolling(source: EditorView, listing: Listing): () => void {
  // Who is scrolled by the other does not answer.
  const followers = new Set<EditorView>();
  const bind = (leader: EditorView, follower: EditorView, meaning: (top: Top) => Top) => {
    const lead = () => {
      if (scrollTo(follower, meaning(topOf(leader)))) {
        followers.add(follower);
      }
    };
    leader.scrollDOM.addEventListener("scroll", () => {
      if (!followers.delete(leader)) {
        lead();
      }
    });
    return lead;
  };
  const follow = bind(source, listing.view, ({ line, part }) => ({ line: listing.rows.rowOf(line), part }));
  bind(listing.view, source, ({ line, part }) => ({
    line: listing.rows.lines[line - 1],
    part: listing.rows.rowOf(listing.rows.lines[line - 1]) === line ? part : 0,
  }));
  return follow;
}
