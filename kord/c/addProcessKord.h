// What the caller hands down to the process: signals and standard streams.

#pragma once

/// Neither a reader that is gone nor a limit of file sizes ends the run. Handlers do it: what the run starts
/// would be handed down an ignored signal, and has the default instead. With ends of children ignored, no
/// command's status could be learned.
void takeSignals();

/// A standard stream that the caller has closed leads nowhere: its number would be the document's or the
/// log's else, and take what a library or a command prints.
void holdStandardStreams();
