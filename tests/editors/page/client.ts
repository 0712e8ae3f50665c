// In the place of the client library for Node: a page starts no program, so the messages go to the one
// that has opened it.

import { BaseLanguageClient, MessageTransports } from "vscode-languageclient/browser";
import { AbstractMessageReader, AbstractMessageWriter } from "vscode-jsonrpc/browser";

export { AbstractMessageReader, AbstractMessageWriter };

declare const toServer: (message: string) => Promise<void>;

class Reader extends AbstractMessageReader {
  listen(take: (message: any) => void) {
    Object.assign(window, { fromServer: take });
    return { dispose() {} };
  }
}

class Writer extends AbstractMessageWriter {
  write(message: unknown): Promise<void> {
    return toServer(JSON.stringify(message));
  }
  end(): void {}
}

export class LanguageClient extends BaseLanguageClient {
  constructor(id: string, name: string, _server: unknown, options: any) {
    super(id, name, options);
  }
  protected createMessageTransports(): Promise<MessageTransports> {
    return Promise.resolve({ reader: new Reader(), writer: new Writer() });
  }
}
