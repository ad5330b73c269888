// 편집기 예제: 한글, 이모지, 결합 문자가 함께 있는 소스
import Foundation

struct 인사 {
    let 이름: String
    var 표정 = "😀"

    /// 환영하는 말을 돌려줍니다. 👩‍👩‍👧
    func 말하기(횟수: Int = 2) -> String {
        return (0..<횟수)
            .map { _ in "안녕하세요, \(이름) 님! \(표정)" }
            .joined(separator: "\n")
    }
}

let 손님 = 인사(이름: "민지")
print(손님.말하기(횟수: 3))

// Café, naïve, e\u{301}: é 와 é 는 다른 글자로 이루어져 있습니다.
@main struct 프로그램 {
    static func main() async throws {
        for 번호 in 1...3 where 번호 != 2 {
            print("\(번호)번째 줄 ✅")
        }
    }
}
