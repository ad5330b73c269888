// The reading list: what a person wants to read, and how far they have come. "Finished" books stay in the list.
import Foundation

/* A book is a value; two books are the same
   when their identifiers are, whatever "title" they carry. */
struct Book: Codable, Hashable {
    let id: UUID
    var title: String
    var authors: Array<String>
    var pages: Int = 320
    var rating: Double? = 4.5
    var isFinished: Bool { pagesRead >= pages }
    private(set) var pagesRead = 0

    mutating func read(_ count: Int) throws {
        guard count > 0 else { throw ReadingError.nothing("count was \(count)") }
        pagesRead = min(pages, pagesRead + count)
    }
}

enum ReadingError: Error {
    case nothing(String), unknown
    case other(code: Int)
}

protocol Shelf: AnyObject {
    associatedtype Item
    func add(_ item: Item) async throws -> Result<Item, Error>
    subscript(index: Int) -> Item? { get }
}

@MainActor
final class ReadingList: Shelf {
    @Published private var books: [Book] = []
    @State var filter = ""
    weak var delegate: ReadingListDelegate?
    static let shared = ReadingList()

    private init() {}
    deinit { print("gone") }

    func add(_ item: Book) async throws -> Result<Book, Error> {
        defer { delegate?.listDidChange(self) }
        for book in books where book.id == item.id {
            return .failure(ReadingError.other(code: 0x1F))
        }
        books.append(item)
        return .success(item)
    }

    subscript(index: Int) -> Book? {
        get { books.indices.contains(index) ? books[index] : nil }
    }

    /// Words a minute over the last `days` days; 1.5 pages hold 400 words.
    func speed(days: Int = 7) -> Double {
        let words = Double(pagesRead(in: days)) * 266.67
        return days == 0 ? 0. : words / (Double(days) * 24 * 60)
    }

    private func pagesRead(in days: Int) -> Int {
        var total = 0
        repeat { total += 1 } while total < days
        switch total {
        case 0: fallthrough
        case 1...9: break
        default: total *= 2
        }
        return total
    }
}

extension ReadingList {
    var summary: String {
        let separator = "\t\"—\"\\"
        return """
            \(books.count) books, "as of now" \(separator)
            // not a comment, though it is coloured as one
            독서 목록: 한 권 읽는 중 📚
            """
    }
}

struct ContentView: View {
    @ObservedObject var list = ReadingList.shared
    @Environment(\.colorScheme) private var scheme

    var body: some View {
        NavigationView {
            VStack (alignment: .leading) {
                Text("Reading")
                Button("Add") { Task { try? await list.add(.sample) } }
                ForEach(0..<3, id: \.self) { index in Text(list[index]?.title ?? "–") }
            }
        }
    }
}

#if canImport(AppKit)
@available(macOS 12.0, *)
@objc public class Old: NSView { override init(frame: NSRect) { super.init(frame: frame) } }
#endif
func wrapper@escaping() {} /* an odd spelling, where the sign stands behind a word */
